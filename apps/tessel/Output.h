#pragma once

// How the tool shows replies: readable tables for a person, or one JSON object per line for a
// script; which messages of a reply report a failure; and the progress line of long listings.

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <Korvo/Plexis/Data/OperationStatus.h>
#include <Korvo/Plexis/Tessel/HighLevelOperations/Commands/CommandReply.h>

#include "Session.h"

namespace Korvo::Plexis::Tessel::Cli {

/// Columns of text separated by two spaces, printed as rows come so that a long listing is never
/// held whole: the first `kBufferedRows` rows (or all, when fewer) are kept to size the columns,
/// then printed; later rows are printed at once in those widths (a wider cell pushes the rest of
/// its row). Cells are shown through `Printable`.
class Table {
public:
    static constexpr std::size_t kBufferedRows = 1000;

    /// `empty` is printed alone by `Finish` when no row came.
    Table(std::ostream& out, std::vector<std::string> headers, std::string empty);

    void AddRow(std::vector<std::string> cells);

    /// Prints what is still held; `empty` when there was no row.
    void Finish();

private:
    void PrintRow(const std::vector<std::string>& cells);

    std::ostream& out;
    std::vector<std::string> headers;
    std::string empty;
    std::vector<std::vector<std::string>> held;
    std::vector<std::size_t> widths;  // set when the held rows are printed
    bool any = false;
};

/// "ok" for a status with code 0, otherwise "failed (code, reason)" and what the reason means.
std::string StatusText(const Data::OperationStatus& status);

/// Shows the messages of one command's reply as they arrive: readable tables and lines, or one
/// line of JSON each (`Json::CommandReplyToJson`). Consecutive messages of one class (the parts
/// of a listing and its final) make one table. Keeps what went wrong (`FailuresOf`) as a count
/// and the first text, never the messages.
class ReplyPrinter {
public:
    ReplyPrinter(std::ostream& out, bool json);
    ~ReplyPrinter();

    ReplyPrinter(const ReplyPrinter&) = delete;
    ReplyPrinter& operator=(const ReplyPrinter&) = delete;

    /// Shows one message; a JSON line is flushed whole.
    void Add(const HighLevelOperations::Commands::CommandReply& reply);

    /// Ends the table in progress.
    void Finish();

    std::size_t FailureCount() const noexcept { return failureCount; }
    /// The first failure's text; empty when none.
    const std::string& FirstFailure() const noexcept { return firstFailure; }

private:
    class Group;

    std::ostream& out;
    bool json;
    std::unique_ptr<Group> group;  // the class of messages being shown, readable form
    std::size_t failureCount = 0;
    std::string firstFailure;
};

/// Writes `replies` as `ReplyPrinter` does in its readable form.
void PrintReadable(const Replies& replies, std::ostream& out);

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
