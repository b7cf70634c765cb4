// Form bodies to fields and sign-ups. What was read stands in the body, and in a form made of it again.

#include "Form.h"
#include "Fuzz.h"
#include "SignUpForm.h"

#include <string>

using namespace tarvex;

int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const std::string_view body = viewOf(bytes, size);
    const wire::Form form(body);
    std::string again;
    for (int number = 1; number <= 9; ++number)
        if (const auto value = form.field(number)) {
            require(value->find('&') == std::string_view::npos, "a value ends before the next field");
            again.append("p").append(std::to_string(number)).append("=").append(*value).append("&");
        }
    const wire::Form second(again);
    for (int number = 1; number <= 9; ++number)
        require(form.field(number) == second.field(number), "each field is read again");
    if (const auto signUp = wire::readSignUpForm(body)) {
        std::string whole = "p1=create-new-user&p2=";
        whole.append(signUp->email)
            .append("&p3=")
            .append(signUp->password)
            .append("&p4=")
            .append(signUp->name);
        require(wire::isSignUpBody(body) && whole + "&type=json" == body, "a sign-up is all of its body");
    }
    return 0;
}
