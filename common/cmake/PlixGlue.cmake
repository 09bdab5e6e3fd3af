include_guard(GLOBAL)

# Generates the GIO glue (skeleton, proxy, completion functions) of one bus
# interface description at build time and wraps it in a static C library.
# The generated code is not ours, so its warnings are silenced; the project's
# own code keeps the full warning set.
#
#   plix_dbus_glue(TARGET <target> XML <description> OUTPUT <base name>
#                  ARGS <further gdbus-codegen arguments>)
function(plix_dbus_glue)
    cmake_parse_arguments(GLUE "" "TARGET;XML;OUTPUT" "ARGS" ${ARGN})
    set(xml ${CMAKE_CURRENT_SOURCE_DIR}/${GLUE_XML})
    set(base ${CMAKE_CURRENT_BINARY_DIR}/${GLUE_OUTPUT})
    add_custom_command(
        OUTPUT ${base}.c ${base}.h
        COMMAND ${GDBUS_CODEGEN} ${GLUE_ARGS} --generate-c-code ${GLUE_OUTPUT} ${xml}
        WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
        DEPENDS ${xml}
        COMMENT "Generating bus glue ${GLUE_OUTPUT}"
        VERBATIM)
    add_library(${GLUE_TARGET} STATIC ${base}.c ${base}.h)
    target_include_directories(${GLUE_TARGET} PUBLIC ${CMAKE_CURRENT_BINARY_DIR})
    target_link_libraries(${GLUE_TARGET} PUBLIC PkgConfig::GLIB)
    target_compile_options(${GLUE_TARGET} PRIVATE -w)
endfunction()
