#pragma once

#include "HttpFixture.h"
#include "Site.h"

#include <boost/algorithm/hex.hpp>
#include <boost/regex.hpp>
#include <map>

/// A browser without script: it keeps what it is told to keep, and follows where it is led.
class Browser
{
public:
    using Response = RawClient::Response;

    explicit Browser(std::uint16_t port) : m_port(port) {}

    /// Goes with each request, a line each.
    std::string extra;
    std::map<std::string, std::string> cookies;
    Response last;

    Response ask(const std::string &method, const std::string &target, const std::string &body = "",
                 const std::string &type = "application/x-www-form-urlencoded")
    {
        std::string request = method + " " + target + " HTTP/1.1\r\nHost: localhost\r\n" + extra;
        for (const auto &[name, value] : cookies)
            request += "Cookie: " + name + "=" + value + "\r\n";
        if (method == "POST")
            request += "Content-Type: " + type + "\r\n";
        RawClient client(m_port);
        client.send(request + "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
        last = client.read();
        for (const auto &field : last)
            if (field.name() == boost::beast::http::field::set_cookie)
                take(std::string(field.value()));
        return last;
    }
    /// The page, wherever it leads to.
    std::string get(const std::string &target)
    {
        ask("GET", target);
        return follow();
    }
    /// What a form sends, with the token of the last page that had one.
    std::string post(const std::string &target, const std::string &form)
    {
        ask("POST", target, form + "&token=" + token);
        return follow();
    }
    std::string signIn(const std::string &login, const std::string &password)
    {
        return post("/sign-in", credentials(login, password));
    }
    unsigned status() const { return last.result_int(); }
    /// Of the session, as the last page has it.
    std::string token;

    static std::string credentials(const std::string &login, const std::string &password)
    {
        return "login=" + escaped(login) + "&password=" + escaped(password);
    }

    static std::string escaped(const std::string &text)
    {
        return boost::regex_replace(boost::algorithm::hex(text), boost::regex(".."), "%$&");
    }

private:
    void take(const std::string &cookie)
    {
        const auto equals = cookie.find('=');
        const std::string value = cookie.substr(equals + 1, cookie.find(';') - equals - 1);
        if (value.empty())
            cookies.erase(cookie.substr(0, equals));
        else
            cookies[cookie.substr(0, equals)] = value;
    }
    std::string follow()
    {
        for (int i = 0; i < 5 && last.result_int() == 303; ++i) {
            const std::string target(last["Location"]);
            if (!target.starts_with('/'))
                return "";
            ask("GET", target.substr(0, target.find('#')));
        }
        const std::string mark = "name=\"token\" value=\"";
        if (const auto found = last.body().find(mark); found != std::string::npos)
            token = last.body().substr(found + mark.size(), 64);
        return last.body();
    }

    std::uint16_t m_port;
};

/// A server with pages, and the account of the fixture.
struct Pages : Http
{
    void start(const tarvex::http::Proxies &proxies = {}, const tarvex::pages::SiteLinks &links = {})
    {
        m_pages.emplace(m_database, *m_current, m_hash, clocks(), links);
        m_site = &*m_pages;
        Http::start({}, proxies);
    }
    Browser signedIn()
    {
        Browser browser(port());
        browser.signIn(m_login, m_password);
        EXPECT_TRUE(has(browser, "<h1>My wheel</h1>"));
        return browser;
    }
    static bool has(const Browser &browser, const std::string &text)
    {
        return browser.last.body().find(text) != std::string::npos;
    }
    /// By the clock of sessions.
    void pass(std::chrono::seconds time) { m_seconds += time.count(); }

    std::optional<tarvex::pages::Site> m_pages;
};
