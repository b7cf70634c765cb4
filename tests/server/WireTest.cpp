#include "Decimal.h"
#include "Form.h"
#include "Records.h"
#include "SampleRows.h"
#include "SignUpAnswer.h"
#include "SignUpForm.h"
#include "WireText.h"
#include "XmlAnswer.h"

#include <gtest/gtest.h>
#include <sstream>

using namespace tarvex::wire;

namespace {

void showNumber(std::ostream &out, std::string_view bytes)
{
    const auto number = decimal32(bytes);
    out << (number ? std::to_string(*number) : "refused");
}

void showForm(std::ostream &out, std::string_view bytes)
{
    const Form form(bytes);
    for (int number = 1; number <= 4; ++number)
        out << '[' << form.field(number).value_or("no field") << ']';
}

void showSignUpForm(std::ostream &out, std::string_view bytes)
{
    if (const auto form = readSignUpForm(bytes))
        out << '[' << form->email << "][" << form->password << "][" << form->name << ']';
    else
        out << "refused";
}

void showGoals(std::ostream &out, std::string_view bytes)
{
    for (const auto &[name, priority, isChecked, place] : readGoalRecords(bytes))
        out << '[' << name << ", " << priority << (isChecked ? ", done, " : ", open, ") << place.setId << '/'
            << place.areaId << ']';
}

void showAreaNames(std::ostream &out, std::string_view bytes)
{
    for (const auto &[areaId, name] : readAreaNameRecords(bytes))
        out << '[' << areaId << ", " << name << ']';
}

void showIds(std::ostream &out, std::string_view bytes)
{
    for (const std::int64_t id : readIdList(bytes))
        out << '[' << id << ']';
}

void showName(std::ostream &out, std::string_view bytes)
{
    out << storableName(bytes).value_or("refused");
}

} // namespace

TEST(Wire, ReadsWhatItsSamplesSay)
{
    const std::pair<const char *, void (*)(std::ostream &, std::string_view)> subjects[] = {
        {"numbers.txt", showNumber}, {"forms.txt", showForm},           {"sign-up-forms.txt", showSignUpForm},
        {"goals.txt", showGoals},    {"area-names.txt", showAreaNames}, {"id-lists.txt", showIds},
        {"names.txt", showName},
    };
    for (const auto &[file, show] : subjects) {
        for (const SampleRow &row : sampleRows(file)) {
            std::ostringstream shown;
            show(shown, row[1]);
            EXPECT_EQ(shown.str(), row[2]) << file << ": " << row[0];
        }
    }
}

TEST(XmlAnswer, EscapesTextAndCanBePureAscii)
{
    for (const auto &[encoding, text] : {std::pair(XmlAnswer::Encoding::Utf8, "\xC3\xAB\xF0\x9F\x98\x80"),
                                         std::pair(XmlAnswer::Encoding::Ascii, "&#235;&#128512;")}) {
        XmlAnswer answer(encoding);
        answer.element("name", "a<b>&\r\n\xC3\xAB\xF0\x9F\x98\x80");
        EXPECT_EQ(answer.finish(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?><answer>"
                                   "<name>a&lt;b&gt;&amp;&#13;\n" +
                                       std::string(text) + "</name></answer>");
    }
}

TEST(SignUpAnswer, IsStrictJsonWithoutSurrogateEscapes)
{
    EXPECT_EQ(signUpRefused("\"\n\xF0\x9F\x98\x80"),
              "{\"result\":\"Error\",\"message\":\"\\\"\\n\xF0\x9F\x98\x80\"}");
}
