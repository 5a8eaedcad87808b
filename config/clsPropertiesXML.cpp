#include "config/clsPropertiesXML.h"

#include "config/modTextEncoding.h"
#include "platform/AppPaths.h"
#include "platform/Failure.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <cstring>
#include <initializer_list>

namespace {

const char* const kSource = "clsPropertiesXML";

// The text of a new preferences file; the declaration is added as a node of its own.
const char kNewDocument[] = "<APPLICATIONS>\r\n</APPLICATIONS>";

constexpr unsigned kParseOptions =
    pugi::parse_default | pugi::parse_declaration | pugi::parse_pi | pugi::parse_comments;

std::string utf8(const QString& text) {
    return text.toStdString();
}
QString fromUtf8(const char* text) {
    return QString::fromUtf8(text);
}

// A name as it stands in a look-up; the query language cannot hold an apostrophe in it.
std::string queryName(const QString& name) {
    if (name.contains(QLatin1Char('\'')))
        throw Failure(
            FailureNumber::XmlLayer, QString::fromLatin1(kSource),
            QStringLiteral("Expression error: the name %1 ends its quotation early").arg(name));
    return utf8(name);
}

// One step of a look-up path: an element name and, when set, the value its "name" attribute
// must have.
struct Step {
    const char* element;
    const char* name;
};

// The first element that the path reaches from `from`, in document order.
pugi::xml_node selectPath(const pugi::xml_node& from, std::initializer_list<Step> path,
                          std::size_t depth = 0) {
    const Step& step = *(path.begin() + depth);
    for (pugi::xml_node child = from.child(step.element); child;
         child = child.next_sibling(step.element)) {
        if (step.name && std::strcmp(child.attribute("name").value(), step.name) != 0)
            continue;
        if (depth + 1 == path.size())
            return child;
        if (pugi::xml_node found = selectPath(child, path, depth + 1))
            return found;
    }
    return {};
}

pugi::xpath_node_set selectAll(const pugi::xml_node& from, const char* query) {
    if (!from)
        raiseObjectNotSet(QString::fromLatin1(kSource));
    return from.select_nodes(query);
}

short fillNames(const pugi::xpath_node_set& nodes, QStringList& names) {
    if (nodes.empty())
        return -1;
    names.clear();
    for (const auto& node : nodes)
        names << fromUtf8(node.node().attribute("name").value());
    return static_cast<short>(names.size() - 1);
}

// Reads a default preferences file; false when it cannot be read or is not one.
bool loadDefaults(const QString& file, pugi::xml_document& defaults) {
    QFile in(file);
    return in.open(QIODevice::ReadOnly) && loadXmlBytes(defaults, in.readAll(), kParseOptions) &&
           std::string_view(defaults.document_element().name()) == "APPLICATIONS";
}

// Appends to `target` each key of `section` that it lacks, with the default's text; gives the
// number of keys appended. A default without text is passed over: a key stored without text
// could never be given a value by SetProp.
int addMissingKeys(const pugi::xml_node& section, pugi::xml_node& target) {
    int added = 0;
    for (const pugi::xml_node& key : section.children("KEY")) {
        const char* name = key.attribute("name").value();
        const pugi::xml_node value = key.first_child();
        if (!value || (value.type() != pugi::node_pcdata && value.type() != pugi::node_cdata) ||
            target.find_child_by_attribute("KEY", "name", name))
            continue;
        pugi::xml_node created = target.append_child("KEY");
        created.append_attribute("name").set_value(name);
        created.append_child(pugi::node_pcdata).set_value(value.value());
        ++added;
    }
    return added;
}

// Collects what the document prints.
struct ByteWriter : pugi::xml_writer {
    QByteArray bytes;
    void write(const void* data, size_t size) override {
        bytes.append(static_cast<const char*>(data), static_cast<qsizetype>(size));
    }
};

} // namespace

clsPropertiesXML::clsPropertiesXML() {
    SetDefaultXmlFileName();
    SetDefaultApplicationName();
}

clsPropertiesXML::~clsPropertiesXML() {
    if (mDirty)
        SaveXmlFile(); // a failure at the end is not reported
    mSectionsNode = {};
    mApplicationNode = {};
}

bool clsPropertiesXML::Initialize(const QString& xmlFileName, const QString& applicationName) {
    if (mInitialized)
        return true;
    if (!xmlFileName.isEmpty())
        setXmlFileName(xmlFileName);
    if (!applicationName.isEmpty())
        setApplicationName(applicationName);
    mDocument.reset();
    loadDocument(mFileName);
    bindApplication();
    mInitialized = true;
    return mInitialized;
}

void clsPropertiesXML::setXmlFileName(const QString& fileName) {
    if (!mInitialized)
        mFileName = fileName;
}

void clsPropertiesXML::setApplicationName(const QString& name) {
    if (name.isEmpty())
        return;
    mApplicationName = name.toLower();
    if (mInitialized)
        bindApplication();
}

void clsPropertiesXML::SetDefaultXmlFileName() {
    if (!mInitialized)
        mFileName = joinPath(appFolder(), exeBaseName() + QStringLiteral(".xml"));
}

void clsPropertiesXML::SetDefaultApplicationName() {
    if (!mInitialized)
        mApplicationName = exeBaseName().toLower();
}

void clsPropertiesXML::ensureInitialized() {
    if (!mInitialized)
        Initialize(QString(), QString());
}

pugi::xml_node clsPropertiesXML::applicationNode() const {
    if (!mApplicationNode)
        raiseObjectNotSet(QString::fromLatin1(kSource));
    return mApplicationNode;
}

short clsPropertiesXML::GetApplicationNodes(QStringList& names) {
    ensureInitialized();
    return fillNames(selectAll(mDocument, "APPLICATIONS/APPLICATION"), names);
}

short clsPropertiesXML::GetSectionNodes(QStringList& names) {
    ensureInitialized();
    return fillNames(selectAll(applicationNode(), "SECTIONS/SECTION"), names);
}

short clsPropertiesXML::GetKeyNodes(QStringList& names, const QString& section) {
    ensureInitialized();
    const pugi::xml_node sectionNode = findSectionNode(section);
    if (!sectionNode)
        raiseObjectNotSet(QString::fromLatin1(kSource));
    return fillNames(selectAll(sectionNode, "KEY"), names);
}

bool clsPropertiesXML::SaveXmlFile() {
    try {
        ensureInitialized();
        if (mKeepFile)
            return false;
        // Every top-level node on its own line, each element without indentation, as the file
        // has always looked: the declaration, CR LF, the whole tree on one line.
        ByteWriter writer;
        for (pugi::xml_node node = mDocument.first_child(); node; node = node.next_sibling()) {
            node.print(writer, "", pugi::format_raw, pugi::encoding_utf8);
            writer.bytes.append("\r\n");
        }
        QSaveFile file(mFileName);
        if (!file.open(QIODevice::WriteOnly))
            return false;
        if (file.write(writer.bytes) != writer.bytes.size())
            return false;
        return file.commit();
    } catch (const std::exception&) {
        return false;
    }
}

QString clsPropertiesXML::GetProp(const QString& section, const QString& key,
                                  const QString& defaultValue) {
    ensureInitialized();
    const pugi::xml_node node = findKeyNode(section, key);
    if (node && node.first_child())
        return fromUtf8(node.first_child().value());
    return defaultValue;
}

short clsPropertiesXML::SetProp(const QString& section, const QString& key, const QString& value) {
    short result = 0;
    try {
        ensureInitialized();
        pugi::xml_node sectionNode = findSectionNode(section);
        if (!sectionNode) {
            if (!mSectionsNode)
                raiseObjectNotSet(QString::fromLatin1(kSource));
            pugi::xml_node created = mSectionsNode.append_child("SECTION");
            created.append_attribute("name").set_value(utf8(section).c_str());
            sectionNode = findSectionNode(section);
        }
        if (!sectionNode || key.isEmpty())
            return result;
        pugi::xml_node keyNode = findKeyNode(section, key);
        const std::string text = utf8(value);
        if (!keyNode) {
            pugi::xml_node created = sectionNode.append_child("KEY");
            created.append_attribute("name").set_value(utf8(key).c_str());
            if (!text.empty())
                created.append_child(pugi::node_pcdata).set_value(text.c_str());
            findKeyNode(section, key);
            mDirty = true;
            return result = 1;
        }
        // A key stored with empty text has no child to read: the value cannot be set then.
        pugi::xml_node textNode = keyNode.first_child();
        if (!textNode)
            raiseObjectNotSet(QString::fromLatin1(kSource));
        if (std::string(textNode.value()) != text) {
            textNode.set_value(text.c_str());
            mDirty = true;
            result = 1;
        }
    } catch (const std::exception&) {
        // trapped: the result stands as it is
    }
    return result;
}

short clsPropertiesXML::GetPropList(QStringList& list, const QString& section,
                                    const QString& separator) {
    ensureInitialized();
    const pugi::xml_node sectionNode = findSectionNode(section);
    list.clear();
    if (!sectionNode || !sectionNode.first_child())
        return -1;
    for (pugi::xml_node child = sectionNode.first_child(); child; child = child.next_sibling()) {
        if (std::string_view(child.name()) == "KEY") {
            if (!child.first_child())
                raiseObjectNotSet(QString::fromLatin1(kSource));
            list << fromUtf8(child.attribute("name").value()) + separator +
                        fromUtf8(child.first_child().value());
        } else {
            list << QString();
        }
    }
    return static_cast<short>(list.size() - 1);
}

short clsPropertiesXML::SetPropList(const QString& section, const QStringList& list,
                                    const QString& separator) {
    ensureInitialized();
    const pugi::xml_node sectionNode = findSectionNode(section);
    if (sectionNode)
        mSectionsNode.remove_child(sectionNode);
    for (const QString& entry : list) {
        const QStringList pieces = entry.split(separator);
        if (pieces.size() == 2)
            SetProp(section, pieces[0], pieces[1]);
    }
    return 0;
}

int clsPropertiesXML::AddMissingDefaults(const QString& defaultsFile) {
    ensureInitialized();
    pugi::xml_document defaults;
    if (!loadDefaults(defaultsFile, defaults))
        return -1;
    const std::string application = utf8(mApplicationName);
    const pugi::xml_node from =
        defaults.document_element()
            .find_child_by_attribute("APPLICATION", "name", application.c_str())
            .child("SECTIONS");
    if (!from)
        return 0;
    if (!mSectionsNode)
        raiseObjectNotSet(QString::fromLatin1(kSource));

    int added = 0;
    for (const pugi::xml_node& section : from.children("SECTION")) {
        const char* name = section.attribute("name").value();
        pugi::xml_node target = mSectionsNode.find_child_by_attribute("SECTION", "name", name);
        if (!target) {
            target = mSectionsNode.append_child("SECTION");
            target.append_attribute("name").set_value(name);
            mDirty = true;
        }
        const int keys = addMissingKeys(section, target);
        mDirty = mDirty || keys > 0;
        added += keys;
    }
    return added;
}

void clsPropertiesXML::DeleteApplication(const QString& application) {
    if (!mInitialized)
        return;
    pugi::xml_node root = mDocument.select_node("APPLICATIONS").node();
    const pugi::xml_node node = findApplicationNode(application);
    if (root && node) {
        // The store keeps working on the application it was bound to, now outside the document:
        // later writes change only that detached copy and never reach the file.
        if (node == mApplicationNode) {
            mDetached.reset();
            mApplicationNode = mDetached.append_copy(node);
            mSectionsNode = mApplicationNode.child("SECTIONS");
        }
        root.remove_child(node);
        mDirty = true;
    }
}

void clsPropertiesXML::DeletePropSection(const QString& section) {
    if (!mInitialized)
        return;
    const pugi::xml_node node = findSectionNode(section);
    if (node) {
        mSectionsNode.remove_child(node);
        mDirty = true;
    }
}

void clsPropertiesXML::DeleteProp(const QString& section, const QString& key) {
    if (!mInitialized)
        return;
    pugi::xml_node sectionNode = findSectionNode(section);
    const pugi::xml_node keyNode = findKeyNode(section, key);
    if (sectionNode && keyNode) {
        sectionNode.remove_child(keyNode);
        mDirty = true;
    }
}

void clsPropertiesXML::bindApplication() {
    if (mApplicationName.isEmpty())
        return;
    mApplicationNode = findApplicationNode(mApplicationName);
    if (!mApplicationNode) {
        pugi::xml_node created = mDocument.document_element().append_child("APPLICATION");
        created.append_attribute("name").set_value(utf8(mApplicationName).c_str());
        mApplicationNode = findApplicationNode(mApplicationName);
        mDirty = true;
    }
    mSectionsNode = mApplicationNode ? mApplicationNode.child("SECTIONS") : pugi::xml_node();
    if (!mSectionsNode && mApplicationNode) {
        mSectionsNode = mApplicationNode.append_child("SECTIONS");
        mDirty = true;
    }
}

void clsPropertiesXML::loadDocument(const QString& file) {
    QFile in(file);
    bool loaded = false;
    if (in.open(QIODevice::ReadOnly)) {
        const QByteArray bytes = in.readAll();
        in.close();
        loaded = loadXmlBytes(mDocument, bytes, kParseOptions) && mDocument.document_element();
    }
    if (loaded)
        return;

    // A file that exists but cannot be used is kept aside before anything overwrites it; when
    // not even that works, the store leaves the file alone.
    if (QFileInfo::exists(file)) {
        const QString backup = file + QStringLiteral(".bak");
        QFile::remove(backup);
        mKeepFile = !QFile::copy(file, backup) && !QFile::rename(file, backup);
    }
    mDocument.reset();
    mDocument.load_string(kNewDocument);
    pugi::xml_node declaration = mDocument.prepend_child(pugi::node_declaration);
    declaration.append_attribute("version").set_value("1.0");
    declaration.append_attribute("encoding").set_value("utf-8");
}

// The look-ups select the first node of a path such as
// "SECTIONS/SECTION[@name='<section>']/KEY[@name='<key>']" in document order. They walk the tree
// directly rather than compiling that query on every read, with the same answers: a name that
// holds an apostrophe cannot stand in such a query and fails as the query would.
pugi::xml_node clsPropertiesXML::findApplicationNode(const QString& application) {
    if (!mDocument)
        raiseObjectNotSet(QString::fromLatin1(kSource));
    const std::string name = queryName(application);
    return selectPath(mDocument, {{"APPLICATIONS", nullptr}, {"APPLICATION", name.c_str()}});
}

pugi::xml_node clsPropertiesXML::findSectionNode(const QString& section) {
    const std::string name = queryName(section);
    return selectPath(applicationNode(), {{"SECTIONS", nullptr}, {"SECTION", name.c_str()}});
}

pugi::xml_node clsPropertiesXML::findKeyNode(const QString& section, const QString& key) {
    const std::string sectionName = queryName(section);
    const std::string keyName = queryName(key);
    return selectPath(
        applicationNode(),
        {{"SECTIONS", nullptr}, {"SECTION", sectionName.c_str()}, {"KEY", keyName.c_str()}});
}
