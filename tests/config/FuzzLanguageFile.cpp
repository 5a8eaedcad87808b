// Fuzz target: any bytes as a language file. Setting the language either loads what the file
// holds or raises the program's failure; nothing else escapes, and the localiser stays usable.
#include "LocalizerSupport.h"

#include "config/clsXMLocalizer.h"
#include "platform/Failure.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

struct Setting : LocalizerFixture {
    using LocalizerFixture::writeRawLanguage;
    void TestBody() override {}
    clsXMLocalizer localizer{props};
};

} // namespace

std::vector<QByteArray> fuzzSeeds() {
    const QByteArray english = TestHome(true).read(u"language/tessaly/en-us.xml"_s);
    return {english.left(4000), english.right(3000),
            "<?xml version=\"1.0\" encoding=\"windows-1252\"?><langtab><forms><form name=\"f\" "
            "caption=\"\x93x\x94\"><c name=\"a\" index=\"\"><caption>c</caption></c></form>"
            "</forms><strings><string name=\"S\"><text>\x80</text></string></strings></langtab>"};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Setting s;
    s.writeRawLanguage(
        u"en-us"_s, QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    try {
        if (!s.localizer.SetLanguage(u"en-us"_s))
            std::abort(); // the catalogue names the language: it is always taken
    } catch (const Failure&) {
        // a damaged file that the load refuses
    }
    if (s.localizer.GetString(u"STR_NOT_THERE"_s) != u"STR_NOT_THERE"_s)
        std::abort();
    return 0;
}
