#include "Decimal.h"
#include "Form.h"
#include "Records.h"
#include "SignUpAnswer.h"
#include "SignUpForm.h"
#include "WireText.h"
#include "XmlAnswer.h"

#include <gtest/gtest.h>

using namespace tarvex::wire;
using namespace std::string_literals;

namespace {

std::string described(const std::vector<GoalRecord> &records)
{
    std::string text;
    for (const GoalRecord &record : records)
        text += "[" + record.name + "|" + std::to_string(record.priority) +
                (record.isChecked ? "|done|" : "|open|") + std::to_string(record.place.setId) + "/" +
                std::to_string(record.place.areaId) + "]";
    return text;
}

std::string goal(const std::string &name)
{
    return "name:" + name + ";priority:5;checked:0;setsId:7;areaId:3;{_end_}";
}

} // namespace

TEST(Decimal, ReadsOnlyWhatFits32SignedBitsInPlainForm)
{
    EXPECT_EQ(decimal32("-2147483648"), -2147483647 - 1);
    EXPECT_EQ(decimal32("2147483647"), 2147483647);
    EXPECT_EQ(decimal32("0"), 0);
    for (const char *text :
         {"", "-", "-0", "+1", "01", "1 ", " 1", "1.0", "0x1", "2147483648", "-2147483649", "1e3"})
        EXPECT_EQ(decimal32(text), std::nullopt) << text;
    EXPECT_EQ(wireId("0"), std::nullopt);
    EXPECT_EQ(wireId("-5"), std::nullopt);
}

TEST(Form, KeepsValuesExactlyAsTheyCame)
{
    const Form form("p1=a+b%41&p2=x=y=&q=1&p3=&p10=no&p1=second&p4");
    EXPECT_EQ(form.field(1), "a+b%41");
    EXPECT_EQ(form.field(2), "x=y=");
    EXPECT_EQ(form.field(3), "");
    EXPECT_EQ(form.field(4), std::nullopt);
}

TEST(SignUpForm, ReadsPasswordsThatHoldSeparators)
{
    const std::string head = "p1=create-new-user&p2=a@b.org&p3=";
    for (const std::string password : {"plain", "a&b=c+d%26", "x&p4=y", "&p3=", ""}) {
        const std::string body = head + password + "&p4=My Name&type=json";
        const auto form = readSignUpForm(body);
        ASSERT_TRUE(form.has_value()) << body;
        EXPECT_EQ(form->email, "a@b.org");
        EXPECT_EQ(form->password, password);
        EXPECT_EQ(form->name, "My Name");
    }
}

TEST(SignUpForm, RefusesBodiesWithoutAllTheirAnchors)
{
    for (const char *body :
         {"", "p1=create-new-user&p2=a&type=json", "p1=create-new-user&p2=a&p3=b&type=json",
          "p1=create-new-user&p2=a&p3=b&p4=c", "p1=create-new-user&p2=a&p3=b&p4=c&type=jso",
          "p1=create-new-user&p2=a&p4=c&p3=b&type=json", "p1=create-new-user&p2=&type=json",
          "p1=sign-in&p2=a&p3=b&p4=c&type=json"})
        EXPECT_FALSE(readSignUpForm(body).has_value()) << body;
}

TEST(GoalRecords, KeepTheirValuesAndOrder)
{
    EXPECT_EQ(described(readGoalRecords("name:Run 5km;priority:2;checked:1;setsId:7;areaId:3;{_end_}"
                                        "name:;priority:-1;checked:0;setsId:8;areaId:4;{_end_}")),
              "[Run 5km|2|done|7/3][|-1|open|8/4]");
    EXPECT_EQ(described(readGoalRecords("")), "");
}

TEST(GoalRecords, MayHoldTheEndMarkInAName)
{
    for (const std::string name : {"x{_end_}y", "{_end_}", "{_end_}{_end_}", "x{_end_}name"}) {
        const std::string field = goal(name) + goal("next");
        EXPECT_EQ(described(readGoalRecords(field)), "[" + name + "|5|open|7/3][next|5|open|7/3]");
    }
}

TEST(GoalRecords, ThatAreBrokenCostNothingButThemselves)
{
    const std::string tooLong(maximumNameSize + 1, 'x');
    for (const std::string &broken : {
             "name:b;priority:x;checked:0;setsId:7;areaId:3;{_end_}"s,
             "name:b;priority:5;checked:2;setsId:7;areaId:3;{_end_}"s,
             "name:b;priority:5;checked:0;setsId:0;areaId:3;{_end_}"s,
             "name:b;priority:5;checked:0;setsId:7;areaId:99999999999;{_end_}"s,
             "name:b;priority:5;checked:0;setsId:7;{_end_}"s,
             "name:b:c;priority:5;checked:0;setsId:7;areaId:3;{_end_}"s,
             "{_end_}"s,
             "rubbish{_end_}"s,
             goal(tooLong),
         }) {
        EXPECT_EQ(described(readGoalRecords(goal("first") + broken + goal("last"))),
                  "[first|5|open|7/3][last|5|open|7/3]")
            << broken.substr(0, 80);
    }
    EXPECT_EQ(described(readGoalRecords(goal("first") + "name:cut;priority:5;check")), "[first|5|open|7/3]");
}

TEST(GoalRecords, AreReadInTimeThatGrowsWithTheirLengthOnly)
{
    std::string hostile;
    while (hostile.size() < 4'000'000)
        hostile += "name:{_end_}";
    EXPECT_TRUE(readGoalRecords(hostile).empty()); // minutes if it went back over the text
}

TEST(AreaNameRecords, KeepTheSoundOnes)
{
    const auto records =
        readAreaNameRecords("id:1;name:He{_end_}alth;{_end_}id:x;name:b;{_end_}id:2;name: ;{_end_}id:3;");
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].areaId, 1);
    EXPECT_EQ(records[0].name, "He{_end_}alth");
    EXPECT_EQ(records[1].areaId, 2);
    EXPECT_EQ(records[1].name, " ");
}

TEST(IdList, PassesOverWhatIsNoId)
{
    EXPECT_EQ(readIdList("12;x;-1;;99999999999;15;16"), (std::vector<std::int64_t>{12, 15}));
}

TEST(StorableName, ComesBackExactlyExceptForWhatXmlForbids)
{
    struct Row
    {
        std::string wire;
        std::string stored;
    };
    for (const Row &row : std::initializer_list<Row>{
             {" +a=b%20\t\n\r{_amp_} ", " +a=b%20\t\n\r{_amp_} "},
             {"Zo\xC3\xAB \xF0\x9F\x98\x80", "Zo\xC3\xAB \xF0\x9F\x98\x80"},
             {"e\xCC\x81", "e\xCC\x81"},                                 // no normalisation
             {"a\0b\x01\x1F\x7F"s, "ab\x7F"},                            // controls
             {"a\xEF\xBF\xBE\xEF\xBF\xBF!", "a!"},                       // U+FFFE, U+FFFF
             {"a\xFF\xC3(\xE2\x82", "a("},                               // no UTF-8
             {"\xC0\xAF\xE0\x80\xAF\xED\xA0\x80\xF4\x90\x80\x80.", "."}, // overlong, surrogate, too high
         })
        EXPECT_EQ(storableName(row.wire), row.stored) << row.wire;
}

TEST(StorableName, IsRefusedWhenItsWireFormIsTooLong)
{
    EXPECT_TRUE(storableName(std::string(maximumNameSize, 'x')).has_value());
    EXPECT_FALSE(storableName(std::string(maximumNameSize + 1, 'x')).has_value());
    EXPECT_FALSE(
        storableName(std::string(maximumNameSize / 2, '?')).has_value()); // a client sends {_quest_} back
}

TEST(XmlAnswer, EscapesTextAndStaysFlat)
{
    XmlAnswer answer;
    answer.beginRecord();
    answer.element("id", 7);
    answer.element("name", "a<b>&\r\n\xC3\xAB");
    answer.endRecord();
    EXPECT_EQ(answer.finish(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?><answer><record><id>7</id>"
                               "<name>a&lt;b&gt;&amp;&#13;\n\xC3\xAB</name></record></answer>");
}

TEST(XmlAnswer, CanBePureAscii)
{
    XmlAnswer answer(XmlAnswer::Encoding::Ascii);
    answer.element("name", "\xC3\xAB\xF0\x9F\x98\x80.");
    EXPECT_NE(answer.finish().find("<name>&#235;&#128512;.</name>"), std::string::npos);
}

TEST(SignUpAnswer, IsStrictJsonWithoutSurrogateEscapes)
{
    EXPECT_EQ(signUpAccepted(), R"({"result":"OK"})");
    EXPECT_EQ(signUpRefused("\"\n\xF0\x9F\x98\x80"),
              "{\"result\":\"Error\",\"message\":\"\\\"\\n\xF0\x9F\x98\x80\"}");
}
