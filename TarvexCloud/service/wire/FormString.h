#pragma once

#include <QByteArray>
#include <QString>

/// The body of one request, written field by field in the order of the calls: "p1=kind&p2=...". Values go in
/// as they are, without any URL encoding; the escaping keeps user text from breaking out of its field.
class FormString
{
public:
    explicit FormString(QLatin1StringView kind);

    /// p2 and p3: the digests of login and password.
    FormString &credentials(const QString &login, const QString &andPassword);
    /// User text, escaped here.
    FormString &text(QLatin1StringView field, const QString &userText);
    /// The low 32 bits as a signed decimal number.
    FormString &number(QLatin1StringView field, qint64 value);
    /// A value that is complete already: an assembled list, or a text that must go out as typed.
    FormString &raw(QLatin1StringView field, const QString &value);

    /// Begins a field whose value the caller appends; large lists are built in place.
    QString &open(QLatin1StringView field);

    /// UTF-8; a lone surrogate becomes a question mark.
    QByteArray body() const { return m_string.toUtf8(); }

private:
    QString m_string;
};

/// A number as forms carry it: the low 32 bits, signed, decimal, in no locale's way of writing.
QString formNumber(qint64 value);
