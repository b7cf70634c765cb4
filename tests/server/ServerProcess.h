#pragma once

#include "TemporaryFolder.h"

#define BOOST_PROCESS_USE_STD_FS
#include <boost/process.hpp>
#include <csignal>
#include <fstream>
#include <string>
#include <utility>

/// The real server as a process of its own, which works in the given folder.
struct ServerProcess
{
    ServerProcess(const TemporaryFolder &folder, const std::string &arguments,
                  const std::string &wrapper = "")
        : child(wrapper + TARVEX_SERVER_BINARY " " + arguments, boost::process::start_dir(folder.path()),
                boost::process::std_out > output, boost::process::std_err > errors)
    {
    }

    /// The next line, or all that is left when the end mark never comes.
    static std::string read(boost::process::pipe &from, char endMark)
    {
        std::string text;
        for (char next = 0; from.read(&next, 1) == 1 && next != endMark;)
            text += next;
        return text;
    }
    std::string line() { return read(output, '\n'); }
    /// Waits until it is ready.
    std::uint16_t port() { return portOf(line()); }
    static std::uint16_t portOf(const std::string &readyLine)
    {
        return static_cast<std::uint16_t>(std::stoi(readyLine.substr(readyLine.rfind(':') + 1)));
    }

    /// Waits for the process to end, with which exit code and after which words on standard error.
    std::pair<int, std::string> ended(int signalBefore = 0)
    {
        ::kill(child.id(), signalBefore); // 0 is none
        std::string text = read(errors, '\0');
        child.wait();
        return {child.exit_code(), text};
    }

    boost::process::pipe output;
    boost::process::pipe errors;
    boost::process::child child;
};

inline const std::string here = " --database sqlite:wheel.db";
inline const std::string serveHere = "serve --listen 127.0.0.1:0" + here;

/// An exit code, and all that was printed.
using Said = std::pair<int, std::string>;

/// Runs the server to its end.
inline Said run(const TemporaryFolder &folder, const std::string &arguments, const std::string &wrapper = "")
{
    ServerProcess process(folder, arguments, wrapper);
    const std::string output = ServerProcess::read(process.output, '\0');
    const auto [exitCode, errors] = process.ended();
    return {exitCode, output + errors};
}

/// What a server is started with so that a script goes before it, in which mounts are its own.
inline std::string behind(const TemporaryFolder &folder, const std::string &script)
{
    std::ofstream(folder.path() / "before.sh") << script << "\nexec \"$@\"";
    return "/usr/bin/unshare --map-root-user --mount sh before.sh ";
}

/// The same so that its folder is a disk of that size.
inline std::string onDiskOf(const TemporaryFolder &folder, const std::string &size)
{
    return behind(folder, "mount -t tmpfs -o size=" + size + " none \"$PWD\" && cd \"$PWD\"");
}

inline std::string contentOf(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}
