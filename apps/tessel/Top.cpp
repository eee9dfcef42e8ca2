// tessel top: the view of a mirror's snapshot, and the loop that redraws it when the mirror
// reports a change, full-screen on a terminal or as plain lines in a pipe.

#include "Top.h"

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <iostream>
#include <memory>
#include <thread>

#include "Errors.h"
#include "Subcommands.h"
#include "Text.h"

namespace Korvo::Plexis::Tessel::Cli {

namespace {

using Client::MirrorSnapshot;
using Client::SourceSnapshot;
using Client::SyncState;
using Clock = std::chrono::steady_clock;

// Bursts of changes are drawn at most this often.
constexpr auto kRedrawInterval = std::chrono::milliseconds(100);
// How often a pipe whose reader has gone is looked for while nothing changes.
constexpr int kPipeCheckMilliseconds = 250;

// Rows of cells printed with each column as wide as its widest cell.
class Table {
public:
    void Add(std::vector<std::string> row) { rows.push_back(std::move(row)); }

    void AppendTo(std::vector<std::string>& lines, const std::string& indent) const {
        std::vector<std::size_t> widths;
        for (const auto& row : rows) {
            widths.resize(std::max(widths.size(), row.size()));
            for (std::size_t i = 0; i < row.size(); ++i) {
                widths[i] = std::max(widths[i], DisplayWidth(row[i]));
            }
        }
        for (const auto& row : rows) {
            std::string line = indent;
            for (std::size_t i = 0; i < row.size(); ++i) {
                line += row[i];
                if (i + 1 < row.size()) {
                    line.append(widths[i] - DisplayWidth(row[i]) + 2, ' ');
                }
            }
            lines.push_back(std::move(line));
        }
    }

private:
    std::vector<std::vector<std::string>> rows;
};

// The loaded material, named from the snapshot's catalogue where it is there.
std::string MaterialText(const SourceSnapshot& source, const Data::Channels::PlayerState& state) {
    switch (state.loadedMaterialType) {
        case 1: {
            if (const auto clip = source.FindClip(state.loadedClipUmId)) {
                return "clip \"" + Printable(TextOf(clip->name)) + "\"";
            }
            const std::string name = TextOf(state.currentClip.clip.name);
            return name.empty() ? "clip " + Printable(Trimmed(state.loadedClipUmId))
                                : "clip \"" + Printable(name) + "\"";
        }
        case 2: {
            const auto& playlists = source.Playlists();
            const auto found = playlists.find(state.loadedSequenceUmId);
            if (found != playlists.end() && found->second) {
                return "playlist \"" + Printable(TextOf(found->second->sequence.name)) + "\"";
            }
            return "playlist " + Printable(Trimmed(state.loadedSequenceUmId));
        }
        case 3:
            return "live " + Printable(Dash(state.liveRecorderName));
        default:
            return "-";
    }
}

void RenderServer(const SourceSnapshot& source, int serverId, const Client::MirroredServer& server,
                  std::vector<std::string>& lines) {
    lines.push_back("server " + std::to_string(serverId) + " " + Printable(server.info.name) +
                    "  " + Client::ToString(server.state));
    Table players;
    players.Add({"PLAYER", "NAME", "MODE", "LOADED", "TIMECODE", "SPEED", "REMAINING"});
    for (const auto& [channel, state] : source.Players()) {
        if (channel.GetServer() != serverId || !state) {
            continue;
        }
        players.Add({channel.ToString(), Printable(Dash(state->channelName)),
                     PlayModeText(state->playMode), MaterialText(source, *state),
                     Printable(Dash(state->currentTimecode)),
                     SpeedText(state->infoOnAir.speedNumerator, state->infoOnAir.speedDenominator),
                     Printable(Dash(state->remainingTimecode))});
    }
    players.AppendTo(lines, "  ");
    Table recorders;
    recorders.Add({"RECORDER", "NAME", "STATE", "TIMECODE", "RECORDED"});
    for (const auto& [channel, recorder] : source.Recorders()) {
        if (channel.GetServer() != serverId || !recorder) {
            continue;
        }
        const auto& state = recorder->state;
        recorders.Add({channel.ToString(), Printable(Dash(state.channelName)),
                       state.isRecording ? "recording" : "stopped",
                       Printable(Dash(state.currentTimecode)), FieldsText(state.recordedFields)});
    }
    recorders.AppendTo(lines, "  ");
}

// Whether every server of every source, and every catalogue, has been listed and is followed.
bool AllLive(const MirrorSnapshot& snapshot) {
    for (const auto& source : snapshot.Sources()) {
        if (source.CatalogueState() != SyncState::Live || source.Servers().empty()) {
            return false;
        }
        for (const auto& [id, server] : source.Servers()) {
            if (server.state != SyncState::Live) {
                return false;
            }
        }
    }
    return true;
}

// Cuts `line` to `width` characters (UTF-8 sequences kept whole).
std::string Clipped(const std::string& line, std::size_t width) {
    std::size_t characters = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
        if ((static_cast<unsigned char>(line[i]) & 0xC0) != 0x80 && characters++ == width) {
            return line.substr(0, i);
        }
    }
    return line;
}

// Whether standard output is a pipe whose reader has gone.
bool StandardOutputGone() {
    pollfd output{STDOUT_FILENO, 0, 0};
    return ::poll(&output, 1, 0) == 1 && (output.revents & (POLLERR | POLLHUP | POLLNVAL)) != 0;
}

// A pipe that the mirror's watcher and the signal thread write to, to wake the drawing loop.
class WakePipe {
public:
    WakePipe() {
        if (::pipe(ends) != 0) {
            throw CliError(ExitCode::Local,
                           std::string("cannot make a pipe: ") + std::strerror(errno));
        }
        for (const int end : ends) {
            ::fcntl(end, F_SETFL, ::fcntl(end, F_GETFL) | O_NONBLOCK);
            ::fcntl(end, F_SETFD, FD_CLOEXEC);
        }
    }
    ~WakePipe() {
        ::close(ends[0]);
        ::close(ends[1]);
    }
    WakePipe(const WakePipe&) = delete;
    WakePipe& operator=(const WakePipe&) = delete;

    // A full pipe already holds a wake-up: the byte may be dropped.
    void Wake() const {
        const char byte = 1;
        [[maybe_unused]] const auto written = ::write(ends[1], &byte, 1);
    }
    void Drain() const {
        char bytes[256];
        while (::read(ends[0], bytes, sizeof bytes) > 0) {
        }
    }
    int ReadEnd() const { return ends[0]; }

private:
    int ends[2] = {-1, -1};
};

// Takes SIGINT, SIGTERM and SIGWINCH on a thread of its own (blocked everywhere else, including
// the threads started after it): notes which came and wakes the loop. A resized terminal only
// asks for a redraw; the others end the view.
class SignalTaker {
public:
    explicit SignalTaker(const WakePipe& wake) {
        sigemptyset(&signals);
        sigaddset(&signals, SIGINT);
        sigaddset(&signals, SIGTERM);
        sigaddset(&signals, SIGWINCH);
        pthread_sigmask(SIG_BLOCK, &signals, nullptr);
        thread = std::thread([this, &wake] {
            for (;;) {
                int signal = 0;
                sigwait(&signals, &signal);
                if (signal == SIGWINCH) {
                    resized = true;
                    wake.Wake();
                    continue;
                }
                received = signal;
                wake.Wake();
                return;
            }
        });
    }
    // The mask stays: the process ends soon after, and a late signal must not kill it.
    ~SignalTaker() {
        if (received == 0) {
            pthread_kill(thread.native_handle(), SIGTERM);
        }
        thread.join();
    }
    SignalTaker(const SignalTaker&) = delete;
    SignalTaker& operator=(const SignalTaker&) = delete;

    int Received() const { return received; }
    // Whether the terminal was resized since the last call.
    bool Resized() { return resized.exchange(false); }

private:
    sigset_t signals{};
    std::atomic<int> received{0};
    std::atomic<bool> resized{false};
    std::thread thread;
};

// The terminal in raw mode on the alternate screen with the cursor hidden, as it was again when
// this ends. Ctrl-C still raises SIGINT (ISIG is left on).
class RawTerminal {
public:
    RawTerminal() {
        if (::tcgetattr(STDIN_FILENO, &saved) != 0) {
            throw CliError(ExitCode::Local,
                           std::string("cannot read the terminal's settings: ") +
                               std::strerror(errno));
        }
        termios raw = saved;
        raw.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        raw.c_cc[VMIN] = 0;
        raw.c_cc[VTIME] = 0;
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &raw);
        Write("\x1b[?1049h\x1b[?25l");
    }
    ~RawTerminal() {
        Write("\x1b[?25h\x1b[?1049l");
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &saved);
    }
    RawTerminal(const RawTerminal&) = delete;
    RawTerminal& operator=(const RawTerminal&) = delete;

    static void Write(const std::string& text) {
        std::cout.flush();
        [[maybe_unused]] const auto written = ::write(STDOUT_FILENO, text.data(), text.size());
    }

    // Rows and columns; 24 by 80 when the terminal does not say.
    static std::pair<std::size_t, std::size_t> Size() {
        winsize size{};
        if (::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_row == 0 ||
            size.ws_col == 0) {
            return {24, 80};
        }
        return {size.ws_row, size.ws_col};
    }

private:
    termios saved{};
};

Client::MirrorOptions MirrorOptionsOf(const ConnectionSettings& settings) {
    settings.CommandEndPoint();  // malformed texts and keys are usage errors, found here
    settings.NotificationEndPoint();
    Client::ConnectionOptions source;
    source.name = "top";
    source.commandEndPoint = settings.commandEndpoint;
    source.notificationEndPoints = {settings.notificationEndpoint};
    source.serverPublicKey = settings.serverKey;
    source.timeLimit = settings.timeout;
    Client::MirrorOptions options;
    options.sources = {source};
    return options;
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) {
        text += line;
        text += '\n';
    }
    return text;
}

// The first line of the full-screen view: where, what is shown, the keys.
std::string StatusLine(const ConnectionSettings& settings, const TopFilter& filter, bool paused) {
    return "tessel top  " + settings.commandEndpoint + "  " +
           (filter.server ? "server " + std::to_string(*filter.server) : "all servers") +
           (paused ? "  PAUSED" : "") + "  (0-9/s server, p pause, q quit)";
}

}  // namespace

std::vector<std::string> RenderTop(const MirrorSnapshot& snapshot, const TopFilter& filter) {
    std::vector<std::string> lines;
    for (const auto& source : snapshot.Sources()) {
        lines.push_back("source " + Printable(source.Name()) + "  catalogue " +
                        Client::ToString(source.CatalogueState()) + ", " +
                        std::to_string(source.ClipCount()) + " clips, " +
                        std::to_string(source.Playlists().size()) + " playlists");
        for (const auto& [id, server] : source.Servers()) {
            if (!filter.server || *filter.server == id) {
                RenderServer(source, id, server, lines);
            }
        }
    }
    return lines;
}

std::optional<int> NextServerFilter(const MirrorSnapshot& snapshot, std::optional<int> current) {
    std::vector<int> servers;
    for (const auto& source : snapshot.Sources()) {
        for (const auto& [id, server] : source.Servers()) {
            servers.push_back(id);
        }
    }
    std::sort(servers.begin(), servers.end());
    const auto next = current ? std::upper_bound(servers.begin(), servers.end(), *current)
                              : servers.begin();
    if (next == servers.end()) {
        return std::nullopt;
    }
    return *next;
}

int Top(const ConnectionSettings& settings, const TopOptions& options, std::ostream& out,
        std::ostream& err) {
    const bool terminal = &out == &std::cout && ::isatty(STDOUT_FILENO) == 1 &&
                          ::isatty(STDIN_FILENO) == 1 && !options.once;
    const bool pipeWatch = &out == &std::cout && !terminal;
    auto mirrorOptions = MirrorOptionsOf(settings);
    // A reader that goes away is noticed from the write's error, not from a signal.
    ::signal(SIGPIPE, SIG_IGN);

    WakePipe wake;
    SignalTaker signals(wake);
    Client::Mirror mirror(std::move(mirrorOptions));
    const int watcher = mirror.Watch([&wake](const Client::MirrorEvent&) { wake.Wake(); });
    struct Unwatch {
        Client::Mirror& mirror;
        int watcher;
        ~Unwatch() { mirror.Unwatch(watcher); }
    } unwatch{mirror, watcher};

    const auto wait = [&](int milliseconds, bool keys) {
        pollfd fds[2] = {{wake.ReadEnd(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
        ::poll(fds, keys ? 2 : 1, milliseconds);
        wake.Drain();
    };
    const auto check = [&out] {
        out.flush();
        if (!out) {
            if (StandardOutputGone()) {
                return false;
            }
            throw CliError(ExitCode::Local, "cannot write standard output");
        }
        return true;
    };
    const auto ended = [&signals] { return signals.Received() == SIGTERM ? 143 : 0; };

    if (options.once) {
        const auto deadline = Clock::now() + settings.timeout;
        while (!AllLive(mirror.Snapshot())) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - Clock::now());
            if (left.count() <= 0) {
                throw CliError(ExitCode::NoServer,
                               LinkFailureText(settings.CommandEndPoint(), settings.timeout,
                                               "--commands"));
            }
            if (signals.Received() != 0) {
                return ended();
            }
            wait(static_cast<int>(std::min<long long>(left.count(), kPipeCheckMilliseconds)),
                 false);
        }
        out << Joined(RenderTop(mirror.Snapshot(), {}));
        check();
        return 0;
    }

    std::optional<RawTerminal> raw;
    if (terminal) {
        raw.emplace();
    }
    TopFilter filter;
    bool paused = false;
    bool dirty = true;        // the mirror changed since the last drawing
    bool keyPressed = false;  // the view must be drawn now, whatever the interval
    std::string shown;
    auto lastDrawn = Clock::now() - kRedrawInterval;
    err << (terminal ? "" : "tessel: top of " + settings.commandEndpoint + "; Ctrl-C to stop\n")
        << std::flush;
    while (signals.Received() == 0) {
        const auto now = Clock::now();
        if ((dirty && !paused && now - lastDrawn >= kRedrawInterval) || keyPressed) {
            const auto snapshot = mirror.Snapshot();
            auto lines = RenderTop(snapshot, filter);
            if (terminal) {
                const auto [rows, columns] = RawTerminal::Size();
                lines.insert(lines.begin(), StatusLine(settings, filter, paused));
                lines.resize(std::min(lines.size(), rows));
                std::string screen = "\x1b[H";
                for (std::size_t i = 0; i < lines.size(); ++i) {
                    screen += Clipped(lines[i], columns) + "\x1b[K" +
                              (i + 1 < lines.size() ? "\r\n" : "");
                }
                screen += "\x1b[J";
                if (screen != shown) {
                    RawTerminal::Write(screen);
                    shown = std::move(screen);
                }
            } else {
                std::string text = Joined(lines);
                if (text != shown) {
                    out << text << '\n';
                    if (!check()) {
                        return 0;
                    }
                    shown = std::move(text);
                }
            }
            dirty = false;
            keyPressed = false;
            lastDrawn = now;
        }
        int timeout = -1;
        if (dirty && !paused) {
            timeout = static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                           lastDrawn + kRedrawInterval - now)
                                           .count()) +
                      1;
        }
        if (pipeWatch && (timeout < 0 || timeout > kPipeCheckMilliseconds)) {
            timeout = kPipeCheckMilliseconds;
        }
        pollfd fds[2] = {{wake.ReadEnd(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
        ::poll(fds, terminal ? 2 : 1, timeout);
        if (terminal && (fds[1].revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
            return 0;  // the terminal has gone
        }
        if ((fds[0].revents & POLLIN) != 0) {
            wake.Drain();
            dirty = true;
        }
        if (pipeWatch && StandardOutputGone()) {
            return 0;
        }
        if (signals.Resized() && terminal) {
            shown.clear();
            keyPressed = true;
        }
        if (!terminal || (fds[1].revents & POLLIN) == 0) {
            continue;
        }
        char keys[64];
        const auto count = ::read(STDIN_FILENO, keys, sizeof keys);
        for (ssize_t i = 0; i < count; ++i) {
            const char key = keys[i];
            if (key == 'q' || key == 'Q') {
                return 0;
            }
            if (key == 'p' || key == 'P') {
                paused = !paused;
            } else if (key == 's' || key == 'S') {
                filter.server = NextServerFilter(mirror.Snapshot(), filter.server);
            } else if (key >= '0' && key <= '9') {
                filter.server = key == '0' ? std::nullopt : std::optional<int>(key - '0');
            } else {
                continue;
            }
            keyPressed = true;
        }
        if (count == 0) {
            return 0;  // the terminal has gone
        }
    }
    return ended();
}

void AddTopCommand(CLI::App& app, Context& context) {
    const auto options = std::make_shared<TopOptions>();
    const auto examples = {"tessel top", "tessel top --once",
                           "tessel -c tcp://replay-1:5555 -n tcp://replay-1:5556 top"};
    auto* top = Subcommand(app, "top",
                           "A live view of servers, players and recorders, redrawn as they "
                           "change",
                           examples);
    top->footer(
        "Per server its sync state (Syncing, Live, Stale, Lost); per player its mode, loaded\n"
        "material by name, time code, speed and remaining time; per recorder its state, time\n"
        "code and recorded length. Redrawn when something changes, at most ten times a second.\n"
        "\n"
        "Keys: 1-9 one server, 0 every server, s the next server, p pause or resume, q quit\n"
        "(Ctrl-C too; exit 0). The terminal is restored on every way out.\n"
        "\n"
        "When standard output is not a terminal: the view as plain lines and an empty line,\n"
        "again at each change, until Ctrl-C or the pipe's reader goes (exit 0).\n"
        "\n" +
        Examples(examples));
    top->add_flag("--once", options->once,
                  "Print the view once every server and the catalogue are listed, and exit "
                  "(exit 5 when that takes longer than --timeout)");
    On(top, context, [&context, options] {
        return Top(context.settings, *options, context.out, context.err);
    });
}

}  // namespace Korvo::Plexis::Tessel::Cli
