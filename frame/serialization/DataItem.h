#pragma once

#include "frame/serialization/BaseDynamicObject.h"

#include <boost/preprocessor/punctuation/comma_if.hpp>
#include <boost/preprocessor/seq/for_each.hpp>
#include <boost/preprocessor/seq/for_each_i.hpp>
#include <boost/preprocessor/seq/variadic_seq_to_seq.hpp>

#include <cstdint>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace orvik {

/// Sees the leaves of a record one by one, in declaration order; used for archives and texts.
class ORVIK_API BaseLeafVisitor
{
public:
    virtual ~BaseLeafVisitor();
    virtual void visit(const char* name, bool& value) = 0;
    virtual void visit(const char* name, int& value) = 0;
    virtual void visit(const char* name, long& value) = 0;
    virtual void visit(const char* name, unsigned int& value) = 0;
    virtual void visit(const char* name, unsigned long& value) = 0;
    virtual void visit(const char* name, float& value) = 0;
    virtual void visit(const char* name, double& value) = 0;
};

/// Calls f(name, value) for each leaf that it visits.
template<class F>
class EachLeaf : public BaseLeafVisitor
{
public:
    explicit EachLeaf(const F& f) : m_f(f) {}
    void visit(const char* name, bool& value) override { m_f(name, value); }
    void visit(const char* name, int& value) override { m_f(name, value); }
    void visit(const char* name, long& value) override { m_f(name, value); }
    void visit(const char* name, unsigned int& value) override { m_f(name, value); }
    void visit(const char* name, unsigned long& value) override { m_f(name, value); }
    void visit(const char* name, float& value) override { m_f(name, value); }
    void visit(const char* name, double& value) override { m_f(name, value); }

private:
    const F m_f;
};

template<class T>
struct IsLeafList : std::false_type
{
};
template<class T>
struct IsLeafList<std::vector<T>> : std::true_type
{
};

/// An enumerator is visited as the whole number that it is stored as; a list as its size and then its values.
template<class T>
void visitLeaf(BaseLeafVisitor& visitor, const char* name, T& value)
{
    if constexpr (std::is_enum<T>::value) {
        typename std::underlying_type<T>::type number = value;
        visitor.visit(name, number);
        value = static_cast<T>(number);
    } else if constexpr (IsLeafList<T>::value) {
        unsigned long size = value.size();
        visitor.visit((std::string(name) + ".size").c_str(), size);
        // A value at a time: the size that an archive tells is not to be trusted with memory before the values are there.
        for (unsigned long i = 0; i < size; ++i) {
            if (i == value.size())
                value.emplace_back();
            visitLeaf(visitor, name, value[i]);
        }
        value.resize(size);
    } else {
        visitor.visit(name, value);
    }
}

class BaseDataItemNodeColl;

/// A record: a tree of named leaves, or a list of records.
class ORVIK_API BaseDataItemNode : public BaseSerializationObject
{
public:
    BaseDataItemNode();
    BaseDataItemNode(const BaseDataItemNode&);
    BaseDataItemNode& operator=(const BaseDataItemNode&);
    ~BaseDataItemNode() override;

    virtual const char* getNodeName() const = 0;
    virtual void visitLeaves(BaseLeafVisitor& visitor);
    /// The list that the record is; null for one of leaves.
    virtual BaseDataItemNodeColl* accessList();

    BoolResult write(BaseOArchive& archive) const;
    BoolResult read(BaseIArchive& archive);
};

/// One field of a record. Every leaf is a type of its own with a name, so that rules and splits can be told by type
/// which field they look at.
template<class T>
class DataItemLeaf
{
public:
    typedef T ValueType;

    DataItemLeaf(const T& value = T()) : m_value(value) {}
    const T& getValue() const { return m_value; }
    T& accessValue() { return m_value; }

private:
    T m_value;
};

/// A list of plain values in a record.
template<class T>
class DataItemLeafColl : public DataItemLeaf<std::vector<T>>
{
};

/// Hands out new nodes one by one, for lists of many: cheaper than one at a time from the heap.
template<class T>
class NodeSupply
{
public:
    boost::shared_ptr<T> next()
    {
        const std::size_t blockSize = 64;  // small enough that a node that is kept alone keeps little else
        if (m_nbUsed % blockSize == 0)
            m_block = T::createNodes(blockSize);
        return boost::shared_ptr<T>(m_block, &m_block[static_cast<std::ptrdiff_t>(m_nbUsed++ % blockSize)]);
    }
    void clear()
    {
        m_block.reset();
        m_nbUsed = 0;
    }

private:
    boost::shared_ptr<T[]> m_block;
    std::size_t m_nbUsed = 0;
};

/// A list of records in a record.
class ORVIK_API BaseDataItemNodeColl
{
public:
    virtual ~BaseDataItemNodeColl();
    virtual std::size_t size() const = 0;
    virtual void clear() = 0;
    /// @throws ORVIKUtilException for a null node or one of another type than the list's.
    virtual void push_back(const boost::shared_ptr<BaseDataItemNode>& node) = 0;
    /// Whether place `i` has a record: lists that tell what became of others have empty places.
    virtual bool hasNode(std::size_t i) const = 0;
    /// @throws ORVIKUtilException for an empty place.
    virtual const BaseDataItemNode& getNode(std::size_t i) const = 0;
    /// A new record of the list's kind, which is not in it.
    virtual boost::shared_ptr<BaseDataItemNode> createNode() const = 0;
    /// Adds a new record and gives it back.
    virtual BaseDataItemNode& appendNode() = 0;

protected:
    [[noreturn]] static void throwWrongNode(const char* listName);
    [[noreturn]] static void throwEmptyPlace(const char* listName, std::size_t i);
};

template<class T>
class DataItemNodeColl : public BaseDataItemNodeColl
{
public:
    typedef T NodeType;
    typedef std::vector<boost::shared_ptr<T>> Nodes;

    std::size_t size() const override { return m_nodes.size(); }
    void clear() override { m_nodes.clear(); }
    void push_back(const boost::shared_ptr<BaseDataItemNode>& node) override
    {
        const boost::shared_ptr<T> typed = boost::dynamic_pointer_cast<T>(node);
        if (!typed)
            throwWrongNode(T::getRecordName());
        m_nodes.push_back(typed);
    }
    void push_back(const boost::shared_ptr<T>& node)
    {
        if (!node)
            throwWrongNode(T::getRecordName());
        m_nodes.push_back(node);
    }
    bool hasNode(std::size_t i) const override { return m_nodes[i] != nullptr; }
    const BaseDataItemNode& getNode(std::size_t i) const override
    {
        if (!m_nodes[i])
            throwEmptyPlace(T::getRecordName(), i);
        return *m_nodes[i];
    }
    boost::shared_ptr<BaseDataItemNode> createNode() const override { return T::createNode(); }
    BaseDataItemNode& appendNode() override
    {
        m_nodes.push_back(T::createNode());
        return *m_nodes.back();
    }
    const Nodes& getNodes() const { return m_nodes; }
    Nodes& accessNodes() { return m_nodes; }

private:
    Nodes m_nodes;
};

// ORVIK_RECORD(Pixel2d, (double, X)(double, Y)(double, Value)) declares a record with its leaves in this order:
// nested types Pixel2d::X ..., get<Pixel2d::X>(), set<Pixel2d::X>(value), Pixel2d::createNode() and
// Pixel2d::createNode(x, y, value). ORVIK_RECORD_DEFINE compiles its body, in the frame, so that a record outlives the
// library that asked for it.

// What a leaf (Type, Leaf) adds to its record.
#define ORVIK_LEAF_DECLARE(Type, Leaf) \
public: \
    struct Leaf : public ::orvik::DataItemLeaf<Type> \
    { \
        static const char* getName() { return #Leaf; } \
    }; \
\
private: \
    const Leaf& leafOf(const Leaf*) const \
    { \
        return m_##Leaf; \
    } \
    Leaf m_##Leaf;
#define ORVIK_LEAF_PARAMETER(Type, Leaf) const Type& value##Leaf
#define ORVIK_LEAF_ASSIGN(Type, Leaf) node->m_##Leaf.accessValue() = value##Leaf;
#define ORVIK_LEAF_VISIT(Type, Leaf) visitor(m_##Leaf);
// The same for each leaf of a sequence, which is given as `leaf`, in its brackets.
#define ORVIK_EACH_LEAF_DECLARE(r, data, leaf) ORVIK_LEAF_DECLARE leaf
#define ORVIK_EACH_LEAF_PARAMETER(r, data, i, leaf) BOOST_PP_COMMA_IF(i) ORVIK_LEAF_PARAMETER leaf
#define ORVIK_EACH_LEAF_ASSIGN(r, data, leaf) ORVIK_LEAF_ASSIGN leaf
#define ORVIK_EACH_LEAF_VISIT(r, data, leaf) ORVIK_LEAF_VISIT leaf

#define ORVIK_RECORD_FROM_SEQ(Name, leaves) \
    class ORVIK_API Name : public ::orvik::BaseDataItemNode \
    { \
        BOOST_PP_SEQ_FOR_EACH(ORVIK_EACH_LEAF_DECLARE, _, leaves) \
\
    public: \
        Name(); \
        Name(const Name&); \
        Name& operator=(const Name&); \
        ~Name() override; \
        static boost::shared_ptr<Name> createNode(); \
        /** Nodes in one piece of memory, which lives as long as one of them does. */ \
        static boost::shared_ptr<Name[]> createNodes(std::size_t nbNodes); \
        static boost::shared_ptr<Name> createNode(BOOST_PP_SEQ_FOR_EACH_I(ORVIK_EACH_LEAF_PARAMETER, _, leaves)) \
        { \
            const boost::shared_ptr<Name> node = createNode(); \
            BOOST_PP_SEQ_FOR_EACH(ORVIK_EACH_LEAF_ASSIGN, _, leaves) \
            return node; \
        } \
        static const char* getRecordName() { return #Name; } \
        const char* getNodeName() const override { return #Name; } \
        template<class Leaf> \
        const typename Leaf::ValueType& get() const \
        { \
            return leafOf(static_cast<const Leaf*>(nullptr)).getValue(); \
        } \
        template<class Leaf> \
        void set(typename Leaf::ValueType value) \
        { \
            const_cast<Leaf&>(leafOf(static_cast<const Leaf*>(nullptr))).accessValue() = std::move(value); \
        } \
        void visitLeaves(::orvik::BaseLeafVisitor& visitor) override; \
\
    private: \
        template<class Visitor> \
        void visitEach(const Visitor& visitor) \
        { \
            BOOST_PP_SEQ_FOR_EACH(ORVIK_EACH_LEAF_VISIT, _, leaves) \
        } \
    }
#define ORVIK_RECORD(Name, leaves) ORVIK_RECORD_FROM_SEQ(Name, BOOST_PP_VARIADIC_SEQ_TO_SEQ(leaves))

/// Declares a list of records `NodeType`; `Name::Coll` is the list itself.
#define ORVIK_RECORD_COLL(Name, NodeType) \
    class ORVIK_API Name : public ::orvik::BaseDataItemNode \
    { \
    public: \
        struct Coll : public ::orvik::DataItemNodeColl<NodeType> \
        { \
            typedef ::orvik::DataItemNodeColl<NodeType> ValueType; \
            static const char* getName() { return "Coll"; } \
        }; \
        Name(); \
        Name(const Name&); \
        Name& operator=(const Name&); \
        ~Name() override; \
        static boost::shared_ptr<Name> createNode(); \
        static const char* getRecordName() { return #Name; } \
        const char* getNodeName() const override { return #Name; } \
        template<class L> \
        const L& get() const \
        { \
            return m_coll; \
        } \
        template<class L> \
        L& access() \
        { \
            return m_coll; \
        } \
        std::size_t size() const { return m_coll.size(); } \
        const NodeType& operator[](std::size_t i) const { return *m_coll.getNodes()[i]; } \
        ::orvik::BaseDataItemNodeColl* accessList() override { return &m_coll; } \
\
    private: \
        Coll m_coll; \
    }

#define ORVIK_RECORD_COLL_DEFINE(Name) \
    Name::Name() = default; \
    Name::Name(const Name&) = default; \
    Name& Name::operator=(const Name&) = default; \
    Name::~Name() = default; \
    boost::shared_ptr<Name> Name::createNode() \
    { \
        return boost::make_shared<Name>(); \
    }
#define ORVIK_RECORD_DEFINE(Name) \
    ORVIK_RECORD_COLL_DEFINE(Name) \
    boost::shared_ptr<Name[]> Name::createNodes(std::size_t nbNodes) \
    { \
        return boost::make_shared<Name[]>(nbNodes); \
    } \
    void Name::visitLeaves(::orvik::BaseLeafVisitor& visitor) \
    { \
        visitEach([&visitor](auto& leaf) { ::orvik::visitLeaf(visitor, leaf.getName(), leaf.accessValue()); }); \
    }

}  // namespace orvik
