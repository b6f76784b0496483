# How the program reaches its users: a bundle on macOS, a program with its icon elsewhere.

# Sources with Apple's frameworks in them.
function(brell_apple_sources target)
    get_target_property(sources ${target} SOURCES)
    list(FILTER sources INCLUDE REGEX "\\.mm$")
    set_source_files_properties(${sources} PROPERTIES COMPILE_OPTIONS -fobjc-arc)
    # Foundation has the classes below AppKit's, and brings the language's own library.
    target_link_libraries(${target} PUBLIC "-framework AppKit" "-framework Foundation")
    # A program that uses none of it, as the one without a window, does not load it either.
    target_link_options(${target} INTERFACE LINKER:-dead_strip_dylibs)
endfunction()

set(brell_bundle_parts ${CMAKE_CURRENT_LIST_DIR}/Bundle)
set(brell_icon ${PROJECT_SOURCE_DIR}/CorvaneBrell/Window/Symbols/application.svg)

# brell_bundle(TARGET): CorvaneBrell.app, its icon made of the drawing in every size that macOS asks for.
function(brell_bundle target)
    add_executable(BrellIconSet ${brell_bundle_parts}/IconSet.cpp)
    target_link_libraries(BrellIconSet PRIVATE Qt6::Svg)
    set(icon ${PROJECT_BINARY_DIR}/CorvaneBrell.icns)
    set(pictures ${PROJECT_BINARY_DIR}/CorvaneBrell.iconset)
    add_custom_command(OUTPUT ${icon} VERBATIM DEPENDS ${brell_icon} BrellIconSet
        COMMAND BrellIconSet ${brell_icon} ${pictures}
        COMMAND iconutil --convert icns --output ${icon} ${pictures})
    target_sources(${target} PRIVATE ${icon})
    set_source_files_properties(${icon} PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
    configure_file(${brell_bundle_parts}/Info.plist.in ${PROJECT_BINARY_DIR}/Info.plist @ONLY)
    set_target_properties(${target} PROPERTIES
        MACOSX_BUNDLE ON MACOSX_BUNDLE_INFO_PLIST ${PROJECT_BINARY_DIR}/Info.plist)
endfunction()

# brell_install(TARGET): what the archive for other systems holds.
function(brell_install target)
    install(TARGETS ${target} RUNTIME DESTINATION bin)
    install(FILES ${brell_icon} DESTINATION share/icons/hicolor/scalable/apps RENAME com.corvane.brell.svg)
    install(FILES ${brell_bundle_parts}/com.corvane.brell.desktop DESTINATION share/applications)
    install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION share/doc/corvane-brell)
endfunction()
