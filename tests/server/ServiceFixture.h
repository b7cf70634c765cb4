#pragma once

#include "Administration.h"
#include "Database.h"
#include "Installation.h"
#include "Md5.h"
#include "Service.h"
#include "TestDatabase.h"

#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <string>

/// A service over a database of its own, with one account and clocks that the test turns.
struct ServiceFixture : testing::Test
{
    ServiceFixture() { EXPECT_EQ(signUp(m_login, m_password, "Anna"), R"({"result":"OK"})"); }

    tarvex::requests::Answer answerTo(const std::string &body, const std::string &peer = "")
    {
        return m_service.finish(*begun(body, peer));
    }
    /// As far as reading goes.
    std::unique_ptr<tarvex::requests::Turn> begun(const std::string &body, const std::string &peer = "")
    {
        auto turn = m_service.begin({.body = body, .peer = peer, .arrival = m_now});
        if (turn->step() == tarvex::requests::Turn::Step::Read)
            m_service.read(*turn);
        return turn;
    }
    std::string post(const std::string &body) { return answerTo(body).body; }

    std::string signUp(const std::string &email, const std::string &password, const std::string &name)
    {
        return post("p1=create-new-user&p2=" + email + "&p3=" + password + "&p4=" + name + "&type=json");
    }

    /// Goes on with a service that has these rules, over the same database.
    void serveWith(const tarvex::requests::SignUpRules &rules)
    {
        awaitWrites();
        m_current.emplace(m_database, m_hash, clocks(), rules);
    }
    tarvex::requests::Clocks clocks()
    {
        return {.steady = [this] { return m_now; }, .seconds = [this] { return m_seconds; }};
    }

    /// The body of a request that the account of the fixture makes.
    std::string asAnna(const std::string &kind, const std::string &rest = "") const
    {
        return "p1=" + kind + credentials(m_login, m_password) + rest;
    }
    std::string postAsAnna(const std::string &kind, const std::string &rest = "")
    {
        return post(asAnna(kind, rest));
    }

    /// The id of the account of the fixture.
    std::int64_t anna() { return tarvex::requests::accountOfLogin(m_database, m_hash, m_login); }

    static std::string credentials(const std::string &login, const std::string &password)
    {
        return "&p2=" + tarvex::security::signInDigest(login) +
               "&p3=" + tarvex::security::signInDigest(password);
    }

    /// A goal of the account's first set, as a list of goals carries it.
    static std::string goal(const std::string &name)
    {
        return "name:" + name + ";priority:5;checked:0;setsId:1;areaId:3;{_end_}";
    }

    /// The texts of all elements of that name in an answer, each in brackets.
    static std::string column(const std::string &xml, const std::string &name)
    {
        const std::string open = "<" + name + ">";
        std::string texts;
        for (auto start = xml.find(open); start != std::string::npos; start = xml.find(open, start + 1)) {
            const auto text = start + open.size();
            texts += "[" + xml.substr(text, xml.find("</" + name + ">", text) - text) + "]";
        }
        return texts;
    }

    /// What an answer brings: the texts of these elements or, if none is named, all of it.
    static std::string shown(const std::string &answer, const std::string &elements)
    {
        std::string texts;
        std::istringstream names(elements);
        for (std::string name; names >> name;)
            texts += column(answer, name);
        return elements.empty() ? answer : texts;
    }
    void awaitWrites()
    {
        m_database.write([](tarvex::store::Connection &) {});
    }
    /// Of what has been written.
    std::int64_t numberOf(const std::string &query)
    {
        awaitWrites();
        return anotherSession(m_folder)->numberOf(query);
    }

    std::string m_login = "Anna@Example.org";
    std::string m_password = "a&b=c+d%26";
    std::chrono::steady_clock::time_point m_now = std::chrono::steady_clock::now();
    std::int64_t m_seconds = 1'000'000;
    TemporaryFolder m_folder;
    tarvex::store::Database m_database{databaseUrl(m_folder)};
    const tarvex::security::KeyedHash m_hash =
        tarvex::requests::openInstallation(m_database, m_folder.path() / "secret");
    std::optional<tarvex::requests::Service> m_current{std::in_place, m_database, m_hash, clocks()};
    tarvex::requests::Service &m_service = *m_current; // whichever that is
};
