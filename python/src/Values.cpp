#include "Values.h"

#include "Interpreter.h"

#include "frame/attr/Declarations.h"
#include "frame/imaproc/ImageAttributes.h"
#include "frame/serialization/PlanIndexedColl.h"
#include "frame/util/BaseException.h"

#include <cctype>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>

namespace py = pybind11;

namespace orvik { namespace python {

namespace {

std::string reprOf(const py::handle& object)
{
    return py::repr(object);
}

template<class T>
T toNumber(const py::handle& object, const std::string& name)
{
    static_assert(std::is_arithmetic<T>::value, "numbers");
    if constexpr (std::is_floating_point<T>::value) {
        const double number = PyFloat_AsDouble(object.ptr());
        if (number == -1.0 && PyErr_Occurred()) {
            PyErr_Clear();
            throw py::type_error(name + ": a number is expected, not " + reprOf(object));
        }
        if (std::isfinite(number) && std::abs(number) > std::numeric_limits<T>::max())
            throw py::value_error(name + ": " + reprOf(object) + " is beyond what a 32-bit float holds");
        return static_cast<T>(number);
    } else {
        const py::object whole = py::reinterpret_steal<py::object>(PyNumber_Index(object.ptr()));
        if (!whole) {
            PyErr_Clear();
            throw py::type_error(name + ": a whole number is expected, not " + reprOf(object));
        }
        if (std::is_unsigned<T>::value && whole < py::int_(0))
            throw py::value_error(name + ": " + reprOf(object) + " is negative");
        const T lowest = std::numeric_limits<T>::min(), highest = std::numeric_limits<T>::max();
        if (whole < py::int_(lowest) || whole > py::int_(highest))
            throw py::value_error(name + ": " + reprOf(object) + " is outside " + std::to_string(lowest) + " to "
                                  + std::to_string(highest));
        return whole.cast<T>();
    }
}

/// Puts arguments into the leaves that they are named after.
class ArgumentReader : public BaseLeafVisitor
{
public:
    explicit ArgumentReader(const py::kwargs& arguments) : m_arguments(arguments) {}

    void visit(const char* name, bool& value) override { put(name, value); }
    void visit(const char* name, int& value) override { put(name, value); }
    void visit(const char* name, long& value) override { put(name, value); }
    void visit(const char* name, unsigned int& value) override { put(name, value); }
    void visit(const char* name, unsigned long& value) override { put(name, value); }
    void visit(const char* name, float& value) override { put(name, value); }
    void visit(const char* name, double& value) override { put(name, value); }

    std::size_t getNbPut() const { return m_nbPut; }

private:
    template<class T>
    void put(const char* leafName, T& value)
    {
        const bool onlyOne = std::strcmp(leafName, "value") == 0;
        std::string name(leafName);
        name[0] = static_cast<char>(std::tolower(name[0]));
        if (onlyOne)
            name = (*m_arguments.begin()).first.cast<std::string>();
        if (!m_arguments.contains(name.c_str()))
            return;
        ++m_nbPut;
        const py::object argument = m_arguments[name.c_str()];
        if (py::isinstance<Named>(argument)) {
            const Named& named = argument.cast<const Named&>();
            value = toNumber<T>(named.value, named.name);
        } else if (!argument.is_none()) {
            value = toNumber<T>(argument, name);
        }
    }

    const py::kwargs& m_arguments;
    std::size_t m_nbPut = 0;
};

/// The layout of a record as a row of an array.
struct RowLayout
{
    py::list names, formats, offsets;
    py::ssize_t size = 0;
};

class LayoutReader : public BaseLeafVisitor
{
public:
    explicit LayoutReader(RowLayout& layout) : m_layout(layout) {}

    void visit(const char* name, bool& value) override { add(name, "?", sizeof value); }
    void visit(const char* name, int& value) override { add(name, "i4", sizeof value); }
    void visit(const char* name, long& value) override { add(name, "i8", sizeof value); }
    void visit(const char* name, unsigned int& value) override { add(name, "u4", sizeof value); }
    void visit(const char* name, unsigned long& value) override { add(name, "u8", sizeof value); }
    void visit(const char* name, float& value) override { add(name, "f4", sizeof value); }
    void visit(const char* name, double& value) override { add(name, "f8", sizeof value); }

private:
    void add(const char* name, const char* format, std::size_t size)
    {
        m_layout.names.append(name);
        m_layout.formats.append(format);
        m_layout.offsets.append(m_layout.size);
        m_layout.size += static_cast<py::ssize_t>(size);
    }

    RowLayout& m_layout;
};

/// Writes the leaves of records one after the other, as RowLayout has them.
class RowWriter : public BaseLeafVisitor
{
public:
    explicit RowWriter(char* place) : m_place(place) {}

    void visit(const char*, bool& value) override { write(value); }
    void visit(const char*, int& value) override { write(value); }
    void visit(const char*, long& value) override { write(value); }
    void visit(const char*, unsigned int& value) override { write(value); }
    void visit(const char*, unsigned long& value) override { write(value); }
    void visit(const char*, float& value) override { write(value); }
    void visit(const char*, double& value) override { write(value); }

private:
    template<class T>
    void write(const T& value)
    {
        std::memcpy(m_place, &value, sizeof value);
        m_place += sizeof value;
    }

    char* m_place;
};

/// What a row of an empty place is filled with.
class EmptyRowWriter : public BaseLeafVisitor
{
public:
    explicit EmptyRowWriter(char* place) : m_writer(place) {}

    void visit(const char* name, bool&) override { write(name, false); }
    void visit(const char* name, int&) override { write(name, 0); }
    void visit(const char* name, long&) override { write(name, 0L); }
    void visit(const char* name, unsigned int&) override { write(name, 0u); }
    void visit(const char* name, unsigned long&) override { write(name, 0UL); }
    void visit(const char* name, float&) override { write(name, std::numeric_limits<float>::quiet_NaN()); }
    void visit(const char* name, double&) override { write(name, std::numeric_limits<double>::quiet_NaN()); }

private:
    template<class T>
    void write(const char* name, T value)
    {
        m_writer.visit(name, value);
    }

    RowWriter m_writer;
};

/// Puts the numbers of a row into leaves, in their order.
class RowReader : public BaseLeafVisitor
{
public:
    explicit RowReader(const double* row) : m_row(row) {}

    void visit(const char*, bool& value) override { value = *m_row++ != 0; }
    void visit(const char*, int& value) override { value = static_cast<int>(*m_row++); }
    void visit(const char*, long& value) override { value = static_cast<long>(*m_row++); }
    void visit(const char*, unsigned int& value) override { value = static_cast<unsigned int>(*m_row++); }
    void visit(const char*, unsigned long& value) override { value = static_cast<unsigned long>(*m_row++); }
    void visit(const char*, float& value) override { value = static_cast<float>(*m_row++); }
    void visit(const char*, double& value) override { value = *m_row++; }

private:
    const double* m_row;
};

/// What a row of a list is, found once for each kind of list.
py::dtype rowType(const char* listName, const BaseDataItemNodeColl& coll)
{
    // Never destroyed: at the end of the process the interpreter is gone before statics are.
    static std::map<std::string, py::dtype>& known = *new std::map<std::string, py::dtype>;
    const auto found = known.find(listName);
    if (found != known.end())
        return found->second;
    RowLayout layout;
    LayoutReader reader(layout);
    coll.createNode()->visitLeaves(reader);
    return known.emplace(listName, py::dtype(layout.names, layout.formats, layout.offsets, layout.size)).first->second;
}

}  // namespace

double toDouble(const py::handle& object, const std::string& name)
{
    return toNumber<double>(object, name);
}

void setParameter(processor::BaseAttribute& attribute, const py::kwargs& arguments)
{
    bool isGiven = false;
    for (const auto& argument : arguments) {
        if (argument.second.is_none() && attribute.isMandatory())
            throw py::type_error(argument.first.cast<std::string>() + ": a number is expected, not None");
        isGiven = isGiven || !argument.second.is_none();
    }
    if (!isGiven)
        return;
    ArgumentReader reader(arguments);
    if (!attribute.setByVisitor(reader) || reader.getNbPut() != arguments.size())
        throw py::type_error(attribute.getObjectName() + " does not take " + reprOf(arguments));
}

/// Appends a record for each row.
static void appendRows(BaseDataItemNodeColl& coll, const py::handle& rows, const std::string& name)
{
    const auto array = py::array_t<double, py::array::c_style>::ensure(rows);
    RowLayout layout;
    LayoutReader reader(layout);
    coll.createNode()->visitLeaves(reader);
    const py::ssize_t nbLeaves = static_cast<py::ssize_t>(py::len(layout.names));
    if (!array || array.ndim() != 2 || array.shape(1) != nbLeaves)
        throw py::type_error(name + ": rows of " + std::to_string(nbLeaves) + " numbers are expected");
    for (py::ssize_t i = 0; i < array.shape(0); ++i) {
        RowReader row(array.data(i, 0));
        coll.appendNode().visitLeaves(row);
    }
}

void setList(processor::BaseAttribute& attribute, const py::handle& rows, const std::string& name)
{
    if (auto* const lists = dynamic_cast<imaproc::BasePlanIndexedAttribute*>(&attribute)) {
        lists->initEmpty();
        for (const auto& [key, rowsOfEntry] : py::cast<py::dict>(rows)) {
            const auto place = py::cast<py::object>(key);
            if (!py::isinstance<py::tuple>(place) || py::len(place) != 3)
                throw py::type_error(name + ": lists are told by (t, c, z), not by " + reprOf(place));
            const auto indexAt = [&](int i) { return py::cast<unsigned long>(place[py::int_(i)]); };
            const boost::shared_ptr<BaseSerializationObject> entry = lists->accessStorage()->createEntry();
            appendRows(*dynamic_cast<BaseDataItemNode&>(*entry).accessList(), rowsOfEntry, name);
            lists->accessStorage()->insert(PlanIndex(indexAt(2), indexAt(1), indexAt(0)), entry);
        }
        return;
    }
    auto& target = dynamic_cast<processor::BaseDataItemAttribute&>(attribute);
    target.initEmpty();
    appendRows(*boost::const_pointer_cast<BaseDataItemNode>(target.accessDataItemNodePtr())->accessList(), rows, name);
}

py::array toStructuredArray(BaseDataItemNode& list)
{
    BaseDataItemNodeColl& coll = *list.accessList();
    const std::size_t size = coll.size();
    py::array rows(rowType(list.getNodeName(), coll), std::vector<py::ssize_t>{static_cast<py::ssize_t>(size)});
    char* place = static_cast<char*>(rows.mutable_data());
    const std::size_t rowSize = static_cast<std::size_t>(rows.itemsize());
    const Unlocked unlocked;
    const Ptr<BaseDataItemNode> model = coll.createNode();
    for (std::size_t i = 0; i < size; ++i, place += rowSize) {
        RowWriter writer(place);
        EmptyRowWriter emptyWriter(place);
        if (coll.hasNode(i))
            const_cast<BaseDataItemNode&>(coll.getNode(i)).visitLeaves(writer);
        else
            model->visitLeaves(emptyWriter);
    }
    return rows;
}

}}  // namespace orvik::python
