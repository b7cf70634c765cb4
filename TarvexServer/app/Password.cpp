#include "Password.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <sys/select.h>
#include <termios.h>
#include <unistd.h>

namespace tarvex::app {

namespace {

constexpr std::size_t longestLine = 128UL * 1024; // more than any password may be

/// Shows nothing that is typed as long as it lives. Signals that would end or stop the process end the
/// waiting for input instead, so that the terminal is left as it was.
class SilentTerminal
{
public:
    SilentTerminal()
    {
        sigset_t blocked;
        ::sigemptyset(&blocked);
        struct sigaction interrupt = {};
        interrupt.sa_handler = [](int) {};
        for (std::size_t i = 0; i < std::size(signals); ++i) {
            ::sigaddset(&blocked, signals[i]);
            ::sigaction(signals[i], &interrupt, &m_actions[i]);
        }
        ::sigprocmask(SIG_BLOCK, &blocked, &m_mask);
        ::tcgetattr(STDIN_FILENO, &m_before);
        termios silent = m_before;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }
    SilentTerminal(const SilentTerminal &) = delete;
    SilentTerminal &operator=(const SilentTerminal &) = delete;
    ~SilentTerminal()
    {
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &m_before);
        ::sigprocmask(SIG_SETMASK, &m_mask, /*oset=*/nullptr);
        for (std::size_t i = 0; i < std::size(signals); ++i)
            ::sigaction(signals[i], &m_actions[i], /*oact=*/nullptr);
        std::cerr << "\n";
    }

    /// Whether there is a line to be read, before any signal. Signals come during this call alone, so that
    /// none is lost between a look and the wait.
    bool awaitLine() const
    {
        fd_set input;
        FD_ZERO(&input);
        FD_SET(STDIN_FILENO, &input);
        return ::pselect(STDIN_FILENO + 1, &input, /*writefds=*/nullptr, /*exceptfds=*/nullptr,
                         /*timeout=*/nullptr, &m_mask) > 0;
    }

private:
    static constexpr int signals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP};
    termios m_before{};
    sigset_t m_mask{};
    struct sigaction m_actions[std::size(signals)] = {};
};

/// A line byte by byte, without its end: what follows is somebody else's. Nothing if there is none.
std::optional<std::string> lineOf(int descriptor)
{
    std::string line;
    for (char next = 0; line.size() < longestLine; line += next) {
        const ssize_t count = ::read(descriptor, &next, 1);
        if (count < 0 || (count == 0 && line.empty()))
            return {};
        if (count == 0 || next == '\n')
            return line;
    }
    return line;
}

std::string asked(const char *prompt)
{
    const SilentTerminal silent;
    std::cerr << prompt << std::flush;
    const auto line = silent.awaitLine() ? lineOf(STDIN_FILENO) : std::nullopt;
    if (!line)
        throw std::runtime_error("No password was typed.");
    return *line;
}

std::string fromTerminal()
{
    std::string password = asked("New password: ");
    if (asked("The same again: ") != password)
        throw std::runtime_error("The passwords differ.");
    return password;
}

std::optional<std::string> fromFile(const std::string &file)
{
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        throw std::runtime_error("The file " + file +
                                 " cannot be read: " + std::generic_category().message(errno) + ".");
    auto line = lineOf(descriptor);
    ::close(descriptor);
    return line;
}

} // namespace

std::string PasswordOptions::read() const
{
    if (file.empty() && ::isatty(STDIN_FILENO) != 0)
        return fromTerminal();
    auto line = file.empty() ? lineOf(STDIN_FILENO) : fromFile(file);
    if (!line)
        throw std::runtime_error("There is no password to read.");
    if (line->ends_with('\r')) // as some editors end lines
        line->pop_back();
    return *line;
}

std::shared_ptr<const PasswordOptions> addPasswordOptions(CLI::App &command)
{
    const auto options = std::make_shared<PasswordOptions>();
    command.add_option(
        "--password-file", options->file,
        "A file whose first line is the password; without it the password is asked for, or read"
        " from standard input if that is no terminal");
    return options;
}

} // namespace tarvex::app
