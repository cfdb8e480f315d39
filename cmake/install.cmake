# What `cmake --install` gives: both libraries, the headers that users include, a CMake package, a pkg-config file.
# Nothing in them names the prefix: an installation may be moved as a whole.
include(CMakePackageConfigHelpers)
include(GNUInstallDirs)

set(headers ${CMAKE_INSTALL_INCLUDEDIR}/orvik)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/orvik)

set_target_properties(orvikframe PROPERTIES EXPORT_NAME frame)
set_target_properties(ORVIKIPLFeatureDetection PROPERTIES EXPORT_NAME library)
foreach(target orvikframe ORVIKIPLFeatureDetection)
  get_target_property(name ${target} EXPORT_NAME)
  add_library(orvik::${name} ALIAS ${target})
  set_target_properties(${target} PROPERTIES
    VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} INSTALL_RPATH $ORIGIN)
  install(TARGETS ${target} EXPORT orvik-${name}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development
    INCLUDES DESTINATION ${headers})
  install(EXPORT orvik-${name} NAMESPACE orvik:: DESTINATION ${package} COMPONENT development)
endforeach()

install(TARGETS orviklog LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime)

# Under the paths by which they are included. Of the frame all but what only processors are built with, of the siblings
# whole-image processors alone.
install(DIRECTORY include/public/ DESTINATION ${headers} COMPONENT development FILES_MATCHING PATTERN "*.h")
file(GLOB_RECURSE headers_of_users RELATIVE ${CMAKE_SOURCE_DIR} CONFIGURE_DEPENDS
  ${CMAKE_SOURCE_DIR}/frame/*.h ${CMAKE_SOURCE_DIR}/frame/*.inc ${CMAKE_SOURCE_DIR}/siblings/*Lvl1.h)
list(FILTER headers_of_users EXCLUDE REGEX "^frame/(simd/\
|core/(BackgroundRuns|Environment|RunState|StageRun|TaskHandOver|ThreadPool|ThreadSupply)|image/(ImageLines|SharedMemory)\
|imaproc/(FunctionForms|ImageInitializerParts|ImageRuleParts|ImageSplits|PlanIndexedInitializers|Stages)\
|processor/(Dispatcher|KernelRegistrator|Split|ValueArchiving)|log/|util/(FrameMessages|Loggers|ProcessEnd))")
list(APPEND headers_of_users
  siblings/AdvancedMorphology/Library.h siblings/AdvancedMorphology/Processor/ConnectedComponents.h
  siblings/AdvancedMorphology/Processor/PartsOfImages.h siblings/Filtering/Library.h siblings/GlobalMeasure/Library.h
  siblings/Utility/Library.h)
foreach(header ${headers_of_users})
  get_filename_component(folder ${header} DIRECTORY)
  install(FILES ${header} DESTINATION ${headers}/${folder} COMPONENT development)
endforeach()

configure_package_config_file(cmake/orvik-config.cmake.in ${CMAKE_BINARY_DIR}/orvik-config.cmake
  INSTALL_DESTINATION ${package} NO_SET_AND_CHECK_MACRO)
# Before version 1 a new minor version may change what users call.
write_basic_package_version_file(${CMAKE_BINARY_DIR}/orvik-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${CMAKE_BINARY_DIR}/orvik-config.cmake ${CMAKE_BINARY_DIR}/orvik-config-version.cmake
  DESTINATION ${package} COMPONENT development)

# Debian names its libraries' folder after the machine: how far the prefix is above it varies.
file(RELATIVE_PATH prefix_from_pkgconfig /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
configure_file(cmake/orvik.pc.in ${CMAKE_BINARY_DIR}/orvik.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/orvik.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)
