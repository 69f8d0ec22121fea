# kdbind_generate(<target> SCHEMAS <file>... [NAMESPACES <uri>=<C++ namespace>...]
#                 [OUTPUT_DIR <dir>] [NAME <name>])
#
# Generates the classes of the schemas with kdbind-xsd when the target is
# built, compiles them into <target> and puts their headers on its include
# path. Include "<name>.h" (default: kdbind_generated.h) for all of them, or
# the header of one namespace, named after its first schema file. The classes
# are generated again when a schema file in the directories of the listed
# schemas changes, or kdbind-xsd itself.
function(kdbind_generate target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "OUTPUT_DIR;NAME" "SCHEMAS;NAMESPACES")
    if(NOT arg_SCHEMAS)
        message(FATAL_ERROR "kdbind_generate(${target}): no SCHEMAS given")
    endif()
    if(arg_UNPARSED_ARGUMENTS)
        message(FATAL_ERROR "kdbind_generate(${target}): unknown arguments ${arg_UNPARSED_ARGUMENTS}")
    endif()
    if(NOT arg_OUTPUT_DIR)
        set(arg_OUTPUT_DIR ${CMAKE_CURRENT_BINARY_DIR}/${target}_kdbind)
    endif()
    if(NOT arg_NAME)
        set(arg_NAME kdbind_generated)
    endif()

    set(schemas "")
    set(depends "")
    foreach(schema IN LISTS arg_SCHEMAS)
        get_filename_component(schema ${schema} ABSOLUTE BASE_DIR ${CMAKE_CURRENT_SOURCE_DIR})
        list(APPEND schemas ${schema})
        # Included and imported schemas are found by the compiler; their
        # neighbours stand in for them as dependencies.
        get_filename_component(schema_dir ${schema} DIRECTORY)
        file(GLOB neighbours CONFIGURE_DEPENDS ${schema_dir}/*.xsd)
        list(APPEND depends ${neighbours})
    endforeach()
    list(REMOVE_DUPLICATES depends)
    set(namespace_options "")
    foreach(mapping IN LISTS arg_NAMESPACES)
        list(APPEND namespace_options --namespace ${mapping})
    endforeach()

    set(source ${arg_OUTPUT_DIR}/${arg_NAME}.cpp)
    add_custom_command(
        OUTPUT ${source} ${arg_OUTPUT_DIR}/${arg_NAME}.h
        COMMAND KdBind::kdbind-xsd --output-dir ${arg_OUTPUT_DIR} --umbrella ${arg_NAME} ${namespace_options}
                ${schemas}
        DEPENDS ${depends} KdBind::kdbind-xsd
        COMMENT "Generating the classes of ${arg_SCHEMAS}"
        VERBATIM)
    target_sources(${target} PRIVATE ${source})
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${arg_OUTPUT_DIR}>)
    target_link_libraries(${target} PUBLIC KdBind::kdbind)
endfunction()
