#pragma once

#include "frame/util/Export.h"

#include <iosfwd>
#include <map>
#include <string>

namespace orvik {

/// What reading and writing share: the versions of the classes met so far, each kept once per archive.
class ORVIK_API BaseArchive
{
public:
    virtual ~BaseArchive();

    bool isClassVersionRegistred(const std::string& className) const;
    void registerClassVersion(const std::string& className, unsigned int version);
    /// @throws ORVIKSerializationException when the class has no version here.
    unsigned int getRegisterClassVersion(const std::string& className) const;

    virtual void beginSection(const std::string& name) = 0;
    virtual void endSection() = 0;

protected:
    BaseArchive();

private:
    std::map<std::string, unsigned int> m_classVersions;
};

/// Writes a text archive: one item a line, `name = value`, between `{ name` and `}` lines of its section.
/// Floating-point values are written in hexadecimal, so that every bit comes back.
class ORVIK_API BaseOArchive : public BaseArchive
{
public:
    /// The stream outlives the archive.
    explicit BaseOArchive(std::ostream& stream);
    ~BaseOArchive() override;

    void beginSection(const std::string& name) override;
    void endSection() override;
    void writeItem(const std::string& name, const std::string& value);

private:
    std::ostream& m_stream;
    unsigned int m_depth = 0;
};

/// Reads what BaseOArchive wrote, in the same order.
/// Anything else than the expected line raises ORVIKSerializationException with both.
class ORVIK_API BaseIArchive : public BaseArchive
{
public:
    /// The stream outlives the archive.
    explicit BaseIArchive(std::istream& stream);
    ~BaseIArchive() override;

    void beginSection(const std::string& name) override;
    void endSection() override;
    std::string readItem(const std::string& name);

private:
    std::string nextLine();

    std::istream& m_stream;
};

/// Holds a section open for its own lifetime, or until `close`.
class ORVIK_API ArchiveSectionManager
{
public:
    ArchiveSectionManager(BaseArchive& archive, const std::string& name);
    /// Closes the section unless an exception is on its way: then the archive is lost anyway.
    /// @throws ORVIKSerializationException as `close`.
    ~ArchiveSectionManager() noexcept(false);
    void close();

    ArchiveSectionManager(const ArchiveSectionManager&) = delete;
    ArchiveSectionManager& operator=(const ArchiveSectionManager&) = delete;

private:
    BaseArchive& m_archive;
    const int m_nbExceptions;  // on their way when the section was opened
    bool m_open = true;
};

/// A named value to write.
template<class T>
struct SerializationOItem
{
    SerializationOItem(const std::string& itemName, const T& itemValue) : name(itemName), value(itemValue) {}
    std::string name;
    const T& value;
};

/// A named place to read into.
template<class T>
struct SerializationIItem
{
    SerializationIItem(const std::string& itemName, T& itemValue) : name(itemName), value(itemValue) {}
    std::string name;
    T& value;
};

/// For `bool`, `int`, `long`, `unsigned int`, `unsigned long`, `float` and `double`.
template<class T>
ORVIK_API BaseOArchive& operator<<(BaseOArchive& archive, const SerializationOItem<T>& item);
template<class T>
ORVIK_API BaseIArchive& operator>>(BaseIArchive& archive, const SerializationIItem<T>& item);

}  // namespace orvik
