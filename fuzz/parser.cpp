// JSON text to a tree. What can be read can be written, in each of the writer's forms, and reads as the same
// tree again; a failure tells why.

#include "JsonTrees.h"
#include "Texts.h"
#include "XKJsonParser.h"
#include "XKJsonWriter.h"

namespace {

void requireRoundTrip(XKJsonParser &parser, const XKJsonValue &tree, bool humanReadable, bool sortKeys)
{
    XKJsonWriter writer;
    writer.setMaxDepth(0);
    writer.setHumanReadable(humanReadable);
    writer.setSortKeys(sortKeys);
    const QString written = writer.stringWithObject(tree);
    if (written.isNull()) {
        const QString why = writer.errorTrace().value().first().localizedDescription();
        require(why.startsWith(u"Infinity"), "all that was read is written, but numbers beyond a double");
        return;
    }
    if (!QStringView(written).isValidUtf16())
        return; // an escape can make half a surrogate pair, which the text itself must not hold
    parser.setMaxDepth(0);
    require(isSameTree(tree, parser.objectWithString(written), sortKeys), "what is written reads the same");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    XKJsonParser parser;
    parser.setMaxDepth(size % 3 == 0 ? 3 : 0);
    const XKJsonValue tree = parser.objectWithString(textOf({bytes, size}));
    require(tree.isNone() == parser.errorTrace().has_value(), "a failure, and nothing else, has a trace");
    if (!tree.isNone())
        requireRoundTrip(parser, tree, /*humanReadable=*/size % 2 == 1, /*sortKeys=*/size % 4 > 1);
    return 0;
}
