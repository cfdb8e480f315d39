#pragma once

#include "frame/image/BufferType.h"
#include "frame/processor/BaseProcessingAlgorithm.h"
#include "frame/processor/ImageBufferTypeIdentifier.h"

namespace orvik { namespace processor {

/// A buffer type with the sample type of its kernel.
template<image::eImageBufferType Type, class SampleType>
struct KernelType
{
    static constexpr image::eImageBufferType s_type = Type;
    typedef SampleType Sample;
};

template<class... Types>
struct KernelTypes
{
};

/// All buffer types; binary and label images are served by the kernels of their sample types.
typedef KernelTypes<KernelType<image::eIBT_Int8, signed char>, KernelType<image::eIBT_UInt8, unsigned char>,
                    KernelType<image::eIBT_Int16, short>, KernelType<image::eIBT_UInt16, unsigned short>,
                    KernelType<image::eIBT_Int32, int>, KernelType<image::eIBT_UInt32, unsigned int>,
                    KernelType<image::eIBT_Real32, float>, KernelType<image::eIBT_Binary, unsigned char>,
                    KernelType<image::eIBT_Label8, unsigned char>, KernelType<image::eIBT_Label16, unsigned short>,
                    KernelType<image::eIBT_Label32, unsigned int> >
    AllKernelTypes;
typedef KernelTypes<KernelType<image::eIBT_Real32, float> > Real32KernelTypes;
typedef KernelTypes<KernelType<image::eIBT_UInt8, unsigned char>, KernelType<image::eIBT_Binary, unsigned char>,
                    KernelType<image::eIBT_Label8, unsigned char> >
    UInt8KernelTypes;

/// Logs, at TRACE, kernels that could not be registered: a less efficient one serves.
ORVIK_API void logFailedRegistrations(const std::string& failures, const char* file);

/// Keeps the kernels of class `X` for one combination of sets registered while the unit that holds it is loaded, unless
/// the machine lacks a set: then nothing of that unit ever runs.
template<class X, class Types, core::eInstructionSet... Sets>
class KernelRegistrator;

template<class X, class... Types, core::eInstructionSet... Sets>
class KernelRegistrator<X, KernelTypes<Types...>, Sets...>
{
public:
    explicit KernelRegistrator(const char* file)
    {
        m_sets.init(Sets...);
        AlgorithmFunctionSelector& selector = X::accessFunctionSelector();
        if (!selector.isSupported(m_sets))
            return;
        std::string failures;
        (add<Types>(selector, failures), ...);
        if (!failures.empty())
            logFailedRegistrations(failures, file);
    }
    ~KernelRegistrator() { X::accessFunctionSelector().unRegisterFunctions(m_sets); }
    KernelRegistrator(const KernelRegistrator&) = delete;
    KernelRegistrator& operator=(const KernelRegistrator&) = delete;

private:
    static constexpr unsigned int efficiency()
    {
        constexpr unsigned int sets[3] = {Sets...};
        return AlgorithmFunctionEfficiency<sets[0], sets[1], sets[2]>::getEfficiency();
    }

    template<class Type>
    void add(AlgorithmFunctionSelector& selector, std::string& failures)
    {
        DataTypeIdentifierColl dataTypes;
        imaproc::ImageBufferTypeIdentifier type;
        type.init(Type::s_type);
        dataTypes.init(type);
        AlgorithmFunctionIdentifier identifier;
        identifier.init(dataTypes, m_sets, efficiency(),
                        static_cast<AlgorithmFunction>(
                            &X::template genericProcessFunction<typename Type::Sample, Sets...>));
        const BoolResult result = selector.registerFunction(identifier);
        if (!result.getValue())
            failures += result.getMessage() + "\n";
    }

    core::InstructionSetsIdentifier m_sets;
};

/// Last line of a kernel unit: registers the class for the set that the unit is written for, all sample types or some.
#define ORVIK_REGISTER_KERNELS(X, Types, ...) \
    namespace { \
    const ::orvik::processor::KernelRegistrator<X, ::orvik::processor::Types, __VA_ARGS__> g_kernels(__FILE__); \
    }

}}  // namespace orvik::processor
