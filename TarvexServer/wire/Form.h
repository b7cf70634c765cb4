#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace tarvex::wire {

/// The fields p1 to p9 of a request body, as raw bytes.
///
/// The body looks like a web form and is none: "&" parts the fields, the first "=" parts name and value, and
/// nothing is percent-decoded, so "+" and "%41" stay what they are. Of a repeated field the first counts;
/// other names are passed over. The views point into the body, which must outlive the form.
class Form
{
public:
    explicit Form(std::string_view body);

    /// The value of p1 (number 1) to p9; nothing if the body does not carry it.
    std::optional<std::string_view> field(int number) const;

private:
    std::array<std::optional<std::string_view>, 9> m_fields;
};

} // namespace tarvex::wire
