#pragma once

#include "Md5.h"
#include "RawClient.h"

#include <string>

/// Requests of a new account.
class Customer
{
public:
    explicit Customer(std::uint16_t port) : m_client(port)
    {
        m_client.post("p1=create-new-user&p2=a@example.org&p3=b&p4=C&type=json");
    }
    RawClient::Response post(const std::string &kind, const std::string &rest = "")
    {
        return m_client.post(request(kind, rest));
    }
    static std::string request(const std::string &kind, const std::string &rest = "",
                               const std::string &password = "b")
    {
        return "p1=" + kind + "&p2=" + tarvex::security::signInDigest("a@example.org") +
               "&p3=" + tarvex::security::signInDigest(password) + rest;
    }
    RawClient::Response saveLargeGoals(int count)
    {
        std::string list = "&p4=";
        for (int i = 0; i < count; ++i)
            list += "name:" + std::string(60'000, 'x') + ";priority:5;checked:0;setsId:1;areaId:3;{_end_}";
        return post("create-some-goals", list);
    }

private:
    RawClient m_client;
};
