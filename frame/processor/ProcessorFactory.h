#pragma once

#include "frame/processor/BaseProcessor.h"
#include "frame/serialization/DynamicObjectFactory.h"

namespace boost { namespace filesystem {
class path;
}}  // namespace boost::filesystem

namespace orvik { namespace processor {

/// A path without its root and its extension: "Processor/MaxL2Norm2Msr/MaxL2Norm2MsrLvl1".
ORVIK_API std::string getRelativeFromRoot(const boost::filesystem::path& path, const boost::filesystem::path& root);

/// Knows all processor classes that are loaded, by their type name.
class ORVIK_API ProcessorFactory
{
public:
    struct ProcessorInfo
    {
        std::string objectName;
        std::string toolTip;
        std::string libraryName;
        std::string headerPath;
    };

    static ProcessorFactory& getInstance();

    template<class X>
    void registerProcessor()
    {
        registerProcessor(X::getTypeName(),
                          makeInfo(X::getObjectNameStr(), X::getToolTipStr(), X::s_library, X::s_headerPath));
    }
    void registerProcessor(const std::string& typeName, const ProcessorInfo& info);
    void unRegisterProcessor(const std::string& typeName);
    bool isRegistered(const std::string& typeName) const;
    /// @throws std::out_of_range when the class is not known.
    ProcessorInfo getInfo(const std::string& typeName) const;
    std::vector<std::string> getTypeNames() const;
    /// A new processor of that class, not initialised; null when it is not known.
    boost::shared_ptr<BaseProcessor> createProcessor(const std::string& typeName) const;

    ProcessorFactory(const ProcessorFactory&) = delete;
    ProcessorFactory& operator=(const ProcessorFactory&) = delete;

private:
    ProcessorFactory();
    ~ProcessorFactory();
    static ProcessorInfo makeInfo(const std::string& objectName, const std::string& toolTip, const char* library,
                                  const char* header);

    struct Processors;
    std::unique_ptr<Processors> m_processors;
};

/// Enters class `X` for as long as this object lives.
template<class X>
struct ProcessorRegistrator
{
    ProcessorRegistrator() { ProcessorFactory::getInstance().registerProcessor<X>(); }
    ~ProcessorRegistrator() { ProcessorFactory::getInstance().unRegisterProcessor(X::getTypeName()); }
    ProcessorRegistrator(const ProcessorRegistrator&) = delete;
    ProcessorRegistrator& operator=(const ProcessorRegistrator&) = delete;
};

/// In the main unit of a class: enters it in both factories while the library is loaded.
#define ORVIK_REGISTER_PROCESSOR(X) \
    namespace { \
    const ::orvik::DynamicRegistrator<X> g_dynamicRegistrator##X; \
    const ::orvik::processor::ProcessorRegistrator<X> g_processorRegistrator##X; \
    }

/// In the main unit of a class of Level 1 or 2: the bodies that say nothing of their own, and its entry in the factories.
#define ORVIK_DEFINE_PROCESSOR(X) \
    X::X() = default; \
    X::~X() = default; \
    ORVIK_REGISTER_PROCESSOR(X)

}}  // namespace orvik::processor
