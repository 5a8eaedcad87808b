// Fuzz target: any bytes as a language file. Setting the language either loads what the file
// holds or raises the program's failure; nothing else escapes, and the localiser stays usable.
#include "config/clsPropertiesXML.h"
#include "config/clsXMLocalizer.h"
#include "platform/Failure.h"
#include "support/TestHome.h"

#include <QFile>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

struct Setting {
    TestHome home;
    clsPropertiesXML props;
    clsXMLocalizer localizer{props};
    Setting() {
        home.write(QStringLiteral("language/xx.xml"), {});
        props.SetProp(QStringLiteral("paths"), QStringLiteral("language"),
                      QStringLiteral("\\language\\"));
        props.SetProp(QStringLiteral("languages"), QStringLiteral("xx"), QStringLiteral("X,1"));
    }
};

Setting& setting() {
    static Setting instance;
    return instance;
}

} // namespace

std::vector<QByteArray> fuzzSeeds() {
    const QByteArray english = TestHome(true).read(QStringLiteral("language/tessaly/en-us.xml"));
    return {english.left(4000), english.right(3000),
            "<?xml version=\"1.0\" encoding=\"windows-1252\"?><langtab><forms><form name=\"f\" "
            "caption=\"\x93x\x94\"><c name=\"a\" index=\"\"><caption>c</caption></c></form>"
            "</forms><strings><string name=\"S\"><text>\x80</text></string></strings></langtab>",
            "<langtab><strings><string name=\"S\"><text>a<b>b</b></text></string></strings>"
            "</langtab>"};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Setting& s = setting();
    QFile file(s.home.file(QStringLiteral("language/xx.xml")));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        std::abort();
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();
    try {
        if (!s.localizer.SetLanguage(QStringLiteral("xx")))
            std::abort(); // the catalogue names the language: it is always taken
    } catch (const Failure&) {
        // a damaged file that the load refuses
    }
    if (s.localizer.GetString(QStringLiteral("STR_NOT_THERE")) != QStringLiteral("STR_NOT_THERE"))
        std::abort();
    return 0;
}
