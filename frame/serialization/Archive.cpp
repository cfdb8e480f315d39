#include "frame/serialization/Archive.h"

#include "frame/util/FrameMessages.h"

#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <exception>
#include <istream>
#include <limits>
#include <ostream>
#include <type_traits>

namespace orvik {

namespace {

[[noreturn]] void throwMalformed(const std::string& text)
{
    ORVIK_THROW_TEXT(ORVIKSerializationException, g_serializationLogSource, text);
}

template<class T>
std::string toText(const T& value)
{
    if constexpr (std::is_floating_point<T>::value) {
        char text[64];  // without the locale, whose decimal point differs from country to country
        const std::to_chars_result end = std::to_chars(text, text + sizeof text, value, std::chars_format::hex);
        return std::string(text, end.ptr);
    } else {
        return std::to_string(value);
    }
}

/// False when the text is not wholly a number of type `T`.
template<class T>
bool fromText(const std::string& text, T& value)
{
    if (text.empty())
        return false;
    [[maybe_unused]] char* end = nullptr;
    errno = 0;
    if constexpr (std::is_floating_point<T>::value) {
        const char* const last = text.data() + text.size();
        const std::from_chars_result result = std::from_chars(text.data(), last, value, std::chars_format::hex);
        return result.ec == std::errc() && result.ptr == last;
    } else if constexpr (std::is_signed<T>::value) {
        const long number = std::strtol(text.c_str(), &end, 10);
        value = static_cast<T>(number);
        return *end == '\0' && errno == 0 && static_cast<long>(value) == number;
    } else {
        const unsigned long number = std::strtoul(text.c_str(), &end, 10);
        value = static_cast<T>(number);
        return text[0] != '-' && *end == '\0' && errno == 0 && static_cast<unsigned long>(value) == number;
    }
}

}  // namespace

BaseArchive::BaseArchive() = default;
BaseArchive::~BaseArchive() = default;

bool BaseArchive::isClassVersionRegistred(const std::string& className) const
{
    return m_classVersions.count(className) != 0;
}

void BaseArchive::registerClassVersion(const std::string& className, unsigned int version)
{
    m_classVersions[className] = version;
}

unsigned int BaseArchive::getRegisterClassVersion(const std::string& className) const
{
    const auto found = m_classVersions.find(className);
    if (found == m_classVersions.end())
        throwMalformed("The archive holds no version of class " + className);
    return found->second;
}

BaseOArchive::BaseOArchive(std::ostream& stream) : m_stream(stream) {}
BaseOArchive::~BaseOArchive() = default;

void BaseOArchive::beginSection(const std::string& name)
{
    m_stream << std::string(2ul * m_depth++, ' ') << "{ " << name << '\n';
}

void BaseOArchive::endSection()
{
    m_stream << std::string(2ul * --m_depth, ' ') << "}\n";
}

void BaseOArchive::writeItem(const std::string& name, const std::string& value)
{
    m_stream << std::string(2ul * m_depth, ' ') << name << " = " << value << '\n';
    if (!m_stream)
        throwMalformed("Item " + name + " could not be written to the archive");
}

BaseIArchive::BaseIArchive(std::istream& stream) : m_stream(stream) {}
BaseIArchive::~BaseIArchive() = default;

std::string BaseIArchive::nextLine()
{
    std::string line;
    if (!std::getline(m_stream, line))
        return "the end of the archive";
    const std::string::size_type start = line.find_first_not_of(' ');
    return start == std::string::npos ? std::string() : line.substr(start);
}

void BaseIArchive::beginSection(const std::string& name)
{
    const std::string line = nextLine();
    if (line != "{ " + name)
        throwMalformed("The archive should open section " + name + " but has: " + line);
}

void BaseIArchive::endSection()
{
    const std::string line = nextLine();
    if (line != "}")
        throwMalformed("The archive should close a section but has: " + line);
}

std::string BaseIArchive::readItem(const std::string& name)
{
    const std::string line = nextLine(), head = name + " = ";
    if (line.compare(0, head.size(), head) != 0)
        throwMalformed("The archive should have item " + name + " but has: " + line);
    return line.substr(head.size());
}

ArchiveSectionManager::ArchiveSectionManager(BaseArchive& archive, const std::string& name)
    : m_archive(archive), m_nbExceptions(std::uncaught_exceptions())
{
    m_archive.beginSection(name);
}

ArchiveSectionManager::~ArchiveSectionManager() noexcept(false)
{
    if (m_open && std::uncaught_exceptions() == m_nbExceptions)
        m_archive.endSection();
}

void ArchiveSectionManager::close()
{
    m_open = false;
    m_archive.endSection();
}

template<class T>
BaseOArchive& operator<<(BaseOArchive& archive, const SerializationOItem<T>& item)
{
    archive.writeItem(item.name, toText(item.value));
    return archive;
}

template<class T>
BaseIArchive& operator>>(BaseIArchive& archive, const SerializationIItem<T>& item)
{
    const std::string text = archive.readItem(item.name);
    if (!fromText(text, item.value))
        throwMalformed("Item " + item.name + " of the archive holds no valid value: " + text);
    return archive;
}

#define ORVIK_ARCHIVE_ITEM(T) \
    template ORVIK_API BaseOArchive& operator<<(BaseOArchive&, const SerializationOItem<T>&); \
    template ORVIK_API BaseIArchive& operator>>(BaseIArchive&, const SerializationIItem<T>&);
ORVIK_ARCHIVE_ITEM(bool)
ORVIK_ARCHIVE_ITEM(int)
ORVIK_ARCHIVE_ITEM(long)
ORVIK_ARCHIVE_ITEM(unsigned int)
ORVIK_ARCHIVE_ITEM(unsigned long)
ORVIK_ARCHIVE_ITEM(float)
ORVIK_ARCHIVE_ITEM(double)

}  // namespace orvik
