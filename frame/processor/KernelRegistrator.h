#pragma once

#include "frame/image/BufferType.h"
#include "frame/processor/BaseProcessingAlgorithm.h"
#include "frame/processor/ImageBufferTypeIdentifier.h"
#include "frame/processor/ProcessorFactory.h"
#include "frame/simd/UnitSet.h"

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
                    KernelType<image::eIBT_Label32, unsigned int>>
    AllKernelTypes;
typedef KernelTypes<KernelType<image::eIBT_Real32, float>> Real32KernelTypes;
typedef KernelTypes<KernelType<image::eIBT_UInt8, unsigned char>, KernelType<image::eIBT_Binary, unsigned char>,
                    KernelType<image::eIBT_Label8, unsigned char>>
    UInt8KernelTypes;
/// What labels are kept in: unsigned integers by any name.
typedef KernelTypes<KernelType<image::eIBT_UInt8, unsigned char>, KernelType<image::eIBT_UInt16, unsigned short>,
                    KernelType<image::eIBT_UInt32, unsigned int>, KernelType<image::eIBT_Label8, unsigned char>,
                    KernelType<image::eIBT_Label16, unsigned short>, KernelType<image::eIBT_Label32, unsigned int>>
    LabelKernelTypes;

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
                        static_cast<AlgorithmFunction>(&X::template genericProcessFunction<typename Type::Sample, Sets...>));
        const BoolResult result = selector.registerFunction(identifier);
        if (!result)
            failures += result.getMessage() + "\n";
    }

    core::InstructionSetsIdentifier m_sets;
};

namespace details {
/// Of the types that a class has kernels for, those that a set has: AVX is no wider than SSE2 for whole numbers.
template<class Types, core::eInstructionSet Set>
struct KernelTypesOfSet
{
    typedef Types type;
};
template<class Types>
struct KernelTypesOfSet<Types, core::eIS_Avx>
{
    typedef Real32KernelTypes type;
};
}  // namespace details

#ifdef ORVIK_UNIT_PLAIN
#define ORVIK_REGISTER_CLASS_OF_KERNELS(X) ORVIK_REGISTER_PROCESSOR(X)
#else
#define ORVIK_REGISTER_CLASS_OF_KERNELS(X)
#endif

/// Last line of a kernel, in the namespace of its Level 3 class: registers it for the set that the unit is compiled for,
/// while its library is loaded. In the unit of plain code, which every class has, the class itself comes first.
#define ORVIK_REGISTER_KERNELS(X, Types) ORVIK_REGISTER_KERNELS_OF(X, Types, ORVIK_UNIT_SET)
/// The same of a class whose kernels have two sets as template arguments.
#define ORVIK_REGISTER_KERNEL_PAIRS(X, Types) ORVIK_REGISTER_KERNELS_OF(X, Types, ORVIK_UNIT_FIRST_SET, ORVIK_UNIT_SET)
#define ORVIK_REGISTER_KERNELS_OF(X, Types, ...) \
    ORVIK_REGISTER_CLASS_OF_KERNELS(X) \
    namespace { namespace details { \
    /** Always true: kernels that could not be registered are logged, and less efficient ones serve. */ \
    bool functionRegistration() \
    { \
        static const ::orvik::processor::KernelRegistrator< \
            X, typename ::orvik::processor::details::KernelTypesOfSet<::orvik::processor::Types, ORVIK_UNIT_SET>::type, \
            __VA_ARGS__> \
            registrator(__BASE_FILE__); \
        return true; \
    } \
    const bool g_functionsAreRegistered = functionRegistration(); \
    } \
    }

}}  // namespace orvik::processor
