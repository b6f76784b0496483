# The libraries Brell builds on, each as one target to link. Small ones are taken as static archives where
# the system offers them: the headless program then starts faster.
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(simdjson REQUIRED)
find_package(pugixml REQUIRED)
find_package(fmt REQUIRED)
find_package(CLI11 REQUIRED)
if(BRELL_WINDOW)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Widgets Svg Test)
endif()

# brell_library(NAME ARCHIVE MODULE): an imported target over a static archive, or over what pkg-config says.
function(brell_library name archive module)
    pkg_check_modules(${name}_found REQUIRED IMPORTED_TARGET ${module})
    add_library(${name} INTERFACE)
    find_library(${name}_archive NAMES ${archive})
    if(${name}_archive)
        target_include_directories(${name} SYSTEM INTERFACE ${${name}_found_INCLUDE_DIRS})
        target_link_libraries(${name} INTERFACE ${${name}_archive})
    else()
        target_link_libraries(${name} INTERFACE PkgConfig::${name}_found)
    endif()
endfunction()

brell_library(brell_utf8proc libutf8proc.a libutf8proc)
brell_library(brell_pugixml libpugixml.a pugixml)
if(APPLE)
    add_library(brell_uuid INTERFACE)  # part of the system library
else()
    brell_library(brell_uuid libuuid.a uuid)
endif()
