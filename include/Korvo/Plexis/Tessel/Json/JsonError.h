#pragma once

#include <stdexcept>
#include <string>

namespace Korvo::Plexis::Tessel::Json {

/// Why a JSON text could not be turned into a domain object. Every failure of the `...FromJson`
/// functions is one `JsonError`; its one-line message is "<path>: <what is wrong>", where the path
/// names the offending field from the root ("clips[3].name", `players["player:1:0"].clip`), or
/// just "<what is wrong>" when the whole text is at fault. The kind lets a caller (such as a
/// command-line tool) map failures to exit codes without reading the text.
class JsonError : public std::invalid_argument {
public:
    enum class Kind {
        Syntax,        ///< the text is not JSON at all (the message gives line and column)
        UnknownName,   ///< no command, reply or notification type of that name
        UnknownField,  ///< an object has a key its class does not have
        WrongType,     ///< a value has the wrong JSON type (a number where a text belongs, ...)
        MissingField,  ///< a required field is absent
        BadChannel,    ///< a channel text is not "player:<server>:<channel>" or "recorder:..."
        BadValue,      ///< a value of the right type that the field cannot hold (out of range,
                       ///< a malformed map key, more channel results than a reply holds)
    };

    /// A failure of kind `kind` at `path` (empty for the whole text), described by `detail`.
    JsonError(Kind kind, std::string path, const std::string& detail);

    Kind GetKind() const noexcept { return kind; }
    /// The path of the offending field; empty when the whole text is at fault.
    const std::string& GetPath() const noexcept { return path; }

    /// The kind's name as written in the documentation ("UnknownField", ...).
    static const char* KindName(Kind kind) noexcept;

private:
    Kind kind;
    std::string path;
};

}  // namespace Korvo::Plexis::Tessel::Json
