// XLIFF 1.2 through pugixml: one trans-unit a stored string, its key as resname, its
// budget as maxwidth in bytes.
#include "translation_files.hpp"

#include "utf8_text.hpp"

#include <pugixml.hpp>

#include <algorithm>
#include <cstring>
#include <sstream>

namespace zevran::strings {

namespace {

using Reason = TranslationFileFailure::Reason;

// An element's name without its namespace prefix.
std::string_view localName(const pugi::xml_node& node)
{
    std::string_view name = node.name();
    const auto colon = name.find(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

pugi::xml_node childNamed(const pugi::xml_node& node, std::string_view name)
{
    for (pugi::xml_node child : node.children())
        if (child.type() == pugi::node_element && localName(child) == name) return child;
    return {};
}

// The element's text, inline markup's text included.
std::string textOf(const pugi::xml_node& node)
{
    std::string text;
    for (pugi::xml_node child : node.children()) {
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) text += child.value();
        else if (child.type() == pugi::node_element) text += textOf(child);
    }
    return text;
}

void collectUnits(const pugi::xml_node& node, std::vector<pugi::xml_node>& units)
{
    for (pugi::xml_node child : node.children()) {
        if (child.type() != pugi::node_element) continue;
        if (localName(child) == "trans-unit") units.push_back(child);
        else collectUnits(child, units);
    }
}

}  // namespace

std::string xliffText(std::span<const StoredString> strings, std::string_view imageName)
{
    pugi::xml_document document;
    auto declaration = document.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";
    auto xliff = document.append_child("xliff");
    xliff.append_attribute("version") = "1.2";
    xliff.append_attribute("xmlns") = "urn:oasis:names:tc:xliff:document:1.2";
    auto file = xliff.append_child("file");
    file.append_attribute("original") = std::string(imageName).c_str();
    file.append_attribute("source-language") = "und";
    file.append_attribute("datatype") = "plaintext";
    auto body = file.append_child("body");
    std::size_t id = 0;
    for (const StoredString& s : strings) {
        auto unit = body.append_child("trans-unit");
        unit.append_attribute("id") = std::to_string(++id).c_str();
        unit.append_attribute("resname") = entryKey(s.address, s.codes).c_str();
        unit.append_attribute("maxwidth") = std::to_string(s.bytes).c_str();
        unit.append_attribute("size-unit") = "byte";
        unit.append_attribute("xml:space") = "preserve";
        unit.append_child("source").text() = s.text.c_str();
    }
    std::ostringstream out;
    document.save(out, "  ", pugi::format_default, pugi::encoding_utf8);
    return out.str();
}

std::vector<TranslationEntry> readXliff(std::string_view text, const std::string& fileName)
{
    pugi::xml_document document;
    const unsigned options = pugi::parse_default | pugi::parse_ws_pcdata;
    const pugi::xml_parse_result parsed = document.load_buffer(text.data(), text.size(), options, pugi::encoding_utf8);
    if (!parsed) {
        const auto upTo = text.substr(0, std::min<std::size_t>(static_cast<std::size_t>(parsed.offset), text.size()));
        const std::size_t line = 1 + static_cast<std::size_t>(std::count(upTo.begin(), upTo.end(), '\n'));
        throw fileError(Reason::Syntax, fileName, line, 0, parsed.description());
    }
    if (!isValidUtf8(text)) throw fileError(Reason::NotUtf8, fileName);
    std::vector<pugi::xml_node> units;
    collectUnits(document, units);
    std::vector<TranslationEntry> entries;
    for (std::size_t i = 0; i < units.size(); ++i) {
        const char* resname = units[i].attribute("resname").value();
        const auto key = parseEntryKey(resname);
        if (!key) throw fileError(Reason::BadKey, fileName, 0, i + 1, resname);
        TranslationEntry entry{key->first, key->second, 0, textOf(childNamed(units[i], "source")),
                               textOf(childNamed(units[i], "target"))};
        entry.budget = static_cast<std::uint32_t>(units[i].attribute("maxwidth").as_uint());
        entries.push_back(std::move(entry));
    }
    return entries;
}

}  // namespace zevran::strings
