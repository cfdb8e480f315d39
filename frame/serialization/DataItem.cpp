#include "frame/serialization/DataItem.h"

#include "frame/serialization/Archive.h"
#include "frame/util/FrameMessages.h"

namespace orvik {

BaseLeafVisitor::~BaseLeafVisitor() = default;
BaseDataItemNodeColl::~BaseDataItemNodeColl() = default;

BaseDataItemNode::BaseDataItemNode() = default;
BaseDataItemNode::BaseDataItemNode(const BaseDataItemNode&) = default;
BaseDataItemNode& BaseDataItemNode::operator=(const BaseDataItemNode&) = default;
BaseDataItemNode::~BaseDataItemNode() = default;

void BaseDataItemNode::visitLeaves(BaseLeafVisitor&) {}

BaseDataItemNodeColl* BaseDataItemNode::accessList()
{
    return nullptr;
}

BoolResult BaseDataItemNode::write(BaseOArchive& archive) const
{
    ArchiveSectionManager section(archive, getNodeName());
    EachLeaf writer([&archive](const char* name, const auto& value) {
        archive << SerializationOItem<typename std::decay<decltype(value)>::type>(name, value);
    });
    // The visitor may change leaves, and the list's user its records, when they read; here they are only looked at.
    BaseDataItemNode& self = const_cast<BaseDataItemNode&>(*this);
    self.visitLeaves(writer);
    if (const BaseDataItemNodeColl* const list = self.accessList()) {
        const unsigned long size = list->size();
        archive << SerializationOItem<unsigned long>("size", size);
        for (unsigned long i = 0; i < size; ++i) {
            const BoolResult written = list->getNode(i).write(archive);
            if (!written.getValue())
                return written;
        }
    }
    section.close();
    return success();
}

BoolResult BaseDataItemNode::read(BaseIArchive& archive)
{
    ArchiveSectionManager section(archive, getNodeName());
    EachLeaf reader([&archive](const char* name, auto& value) {
        archive >> SerializationIItem<typename std::decay<decltype(value)>::type>(name, value);
    });
    visitLeaves(reader);
    if (BaseDataItemNodeColl* const list = accessList()) {
        unsigned long size = 0;
        archive >> SerializationIItem<unsigned long>("size", size);
        list->clear();
        for (unsigned long i = 0; i < size; ++i) {
            const BoolResult read = list->appendNode().read(archive);
            if (!read.getValue())
                return read;
        }
    }
    section.close();
    return success();
}

void BaseDataItemNodeColl::throwWrongNode(const char* listName)
{
    ORVIK_THROW_TEXT(ORVIKUtilException, g_utilLogSource,
                     std::string("A list of ") + listName + " was given a null record or one of another type");
}

void BaseDataItemNodeColl::throwEmptyPlace(const char* listName, std::size_t i)
{
    ORVIK_THROW_TEXT(ORVIKUtilException, g_utilLogSource,
                     "Place " + std::to_string(i) + " of a list of " + listName + " is empty");
}

}  // namespace orvik
