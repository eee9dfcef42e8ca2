#pragma once

// How the tool shows replies: readable tables for a person, or one JSON object per line for a
// script; which messages of a reply report a failure; and the progress line of long listings.

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <Korvo/Plexis/Data/OperationStatus.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

#include "Session.h"

namespace Korvo::Plexis::Tessel::Cli {

/// Columns of text, each as wide as its widest cell, separated by two spaces.
class Table {
public:
    explicit Table(std::vector<std::string> headers);

    void AddRow(std::vector<std::string> cells);
    std::size_t RowCount() const noexcept { return rows.size(); }

    /// Writes the header and the rows; `empty` alone when there is no row.
    void Print(std::ostream& out, const std::string& empty) const;

private:
    std::vector<std::string> headers;
    std::vector<std::vector<std::string>> rows;
};

/// "ok" for a status with code 0, otherwise "failed (code, reason)" and what the reason means.
std::string StatusText(const Data::OperationStatus& status);

/// Writes `replies` (the messages of one command's reply) as tables and lines a person reads;
/// the parts of a listing make one table.
void PrintReadable(const Replies& replies, std::ostream& out);

/// Writes each message of `replies` as one line of JSON (`Json::CommandReplyToJson`), parts first.
void PrintJson(const Replies& replies, std::ostream& out);

/// What went wrong according to `replies`: one text per failure (a FailureReply, an
/// UnknownCommand, each result whose status code is not 0); empty when all went well.
std::vector<std::string> FailuresOf(const Replies& replies);

/// How many items (clips, channel results, ...) one message carries, and what they are called.
std::size_t ItemCount(const HighLevelOperations::Commands::CommandReply& reply);
const char* ItemName(const HighLevelOperations::Commands::CommandReply& reply);

/// The line "receiving clips: 3 parts, 1500 items" on a terminal, rewritten in place as the
/// parts of a listing arrive and erased at the end. Writes nothing when disabled (standard error
/// is not a terminal) or when the reply comes in one message.
class Progress {
public:
    Progress(std::ostream& err, bool enabled) : err(err), enabled(enabled) {}
    ~Progress() { Finish(); }

    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Counts one message of the reply; shows the line for every part.
    void Add(const HighLevelOperations::Commands::CommandReply& reply, bool final);

    /// Erases the line when one was shown.
    void Finish();

    /// An observer for `Session::Call` that feeds this progress.
    Session::ReplyObserver Observer() {
        return [this](const HighLevelOperations::Commands::CommandReply& reply, bool final) {
            Add(reply, final);
        };
    }

private:
    std::ostream& err;
    bool enabled;
    bool shown = false;
    std::size_t parts = 0;
    std::size_t items = 0;
};

/// Whether standard error is a terminal, where the progress line belongs.
bool StandardErrorIsTerminal();

}  // namespace Korvo::Plexis::Tessel::Cli
