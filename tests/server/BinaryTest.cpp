#include "ListenAddress.h"
#include "Md5.h"
#include "RawClient.h"
#include "TemporaryFolder.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace tarvex;

namespace {

/// The real server as a child process, its standard output on a pipe and its standard error in a file.
class Process
{
public:
    Process(std::vector<std::string> arguments, const std::filesystem::path &errors) : m_errors(errors)
    {
        std::array<int, 2> pipe{};
        if (::pipe2(pipe.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        arguments.insert(arguments.begin(), TARVEX_SERVER_BINARY);
        std::vector<char *> argv;
        argv.reserve(arguments.size() + 1);
        for (std::string &argument : arguments)
            argv.push_back(argument.data());
        argv.push_back(nullptr);
        m_id = ::fork();
        if (m_id == 0) {
            ::dup2(pipe[1], STDOUT_FILENO);
            std::freopen(m_errors.c_str(), "w", stderr);
            ::execv(argv.front(), argv.data());
            std::_Exit(127);
        }
        ::close(pipe[1]);
        m_output = ::fdopen(pipe[0], "r");
    }
    Process(const Process &) = delete;
    Process &operator=(const Process &) = delete;
    ~Process()
    {
        if (m_id > 0)
            end(SIGKILL);
        std::fclose(m_output);
    }

    /// Waits for the process, after the signal if there is one, and returns its exit code; -1 if it was
    /// killed.
    int end(int signal = 0)
    {
        if (signal != 0)
            ::kill(m_id, signal);
        int status = 0;
        ::waitpid(m_id, &status, 0);
        m_id = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    /// The next line of the output without its end, as soon as it is there; empty once the process has ended.
    std::string line()
    {
        std::string text;
        for (int c = std::fgetc(m_output); c != EOF && c != '\n'; c = std::fgetc(m_output))
            text += static_cast<char>(c);
        return text;
    }
    std::string errors() const
    {
        std::stringstream text;
        text << std::ifstream(m_errors).rdbuf();
        return text.str();
    }

private:
    std::string m_errors;
    std::FILE *m_output = nullptr;
    pid_t m_id = -1;
};

} // namespace

TEST(Binary, ServesTheSampleAccountUntilItIsTold)
{
    const TemporaryFolder folder;
    const std::string database = "sqlite:" + (folder.path() / "made" / "on the way" / "wheel.db").string();
    for (const std::string &said : {std::string(), std::string("The sample account is there already.")}) {
        Process sample({"sample", "--database", database}, folder.path() / "sample.err");
        if (!said.empty()) {
            EXPECT_EQ(sample.line(), said);
        }
        EXPECT_EQ(sample.line(), "login: sample@example.org");
        EXPECT_EQ(sample.line(), "password: wheel of life");
        EXPECT_EQ(sample.end(), 0);
    }
    Process server({"serve", "--listen", "127.0.0.1:0", "--database", database}, folder.path() / "server");
    const std::string ready = server.line();
    const std::string address = ready.substr(0, ready.size() - std::string("/tarvex/").size());
    ASSERT_TRUE(ready.starts_with("READY http://127.0.0.1:") && ready.ends_with("/tarvex/")) << ready;
    const std::string listen = address.substr(std::string("READY http://").size());
    const std::string login = security::signInDigest("sample@example.org");
    const std::string password = security::signInDigest("wheel of life");
    RawClient client(app::listenAddress(listen)->port);
    EXPECT_EQ(client.post("p1=sign-in&p2=" + login + "&p3=" + password).body(), "OK");
    client.post("p1=create-new-user&p2=new@example.org&p3=topsecret&p4=Newcomer&type=json");
    client.post("p1=sign-in&p2=" + login + "&p3=" + login);

    Process second({"serve", "--listen", listen, "--database", database}, folder.path() / "busy");
    EXPECT_EQ(second.end(), 1);
    EXPECT_EQ(second.errors(),
              "tarvex-server: The address " + listen + " cannot be listened on: Address already in use.\n");

    EXPECT_EQ(server.end(SIGTERM), 0);
    const std::string log = server.errors();
    EXPECT_NE(log.find(R"("kind":"create-new-user","outcome":"done")"), std::string::npos) << log;
    for (const std::string &secret : {login, password, std::string("example"), std::string("topsecret"),
                                      std::string("Newcomer"), std::string("127.0.0.1")})
        EXPECT_EQ(log.find(secret), std::string::npos) << secret;
}

TEST(Binary, SaysInOneLineWhyItCannotStart)
{
    const TemporaryFolder folder;
    const std::vector<std::vector<std::string>> rows = {
        {"serve", "--listen", "127.0.0.1:0", "--database", "sqlite:/proc/none/wheel.db"},
        {"serve", "--listen", "127.0.0.1", "--database", folder.databaseUrl()},
        {"serve", "--listen", "::1:80", "--database", folder.databaseUrl()},
        {"serve", "--listen", "localhost:65536", "--database", folder.databaseUrl()},
        {"serve", "--listen", "127.0.0.1:0", "--database", "postgresql://localhost/wheel"},
    };
    for (const auto &arguments : rows) {
        Process server(arguments, folder.path() / "server");
        EXPECT_EQ(server.end(), 1);
        const std::string errors = server.errors();
        EXPECT_TRUE(errors.starts_with("tarvex-server: ")) << errors;
        EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1) << errors;
    }
}
