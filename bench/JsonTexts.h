#pragma once

#include <QString>

/// Texts of the kinds that JSON codecs are usually compared with, made anew each time from a fixed seed.
namespace JsonTexts {
/// Short messages with their senders: many members, long strings in several scripts, some escapes.
QString posts();
/// A programme of events: small dictionaries and arrays, integers, deep indentation.
QString catalog();
/// The outline of a country: pairs of numbers with many digits, no white space.
QString coordinates();
/// What the service answers to a sign-up: 66 bytes.
QString signUpAnswer();

/// An array of so many nests of brackets, each that deep.
QString nests(int count, int depth);
/// An array of so many dictionaries, each of so many members.
QString dictionaries(int count, int members);
/// So many records, some 100 bytes each.
QString records(int count);
} // namespace JsonTexts
