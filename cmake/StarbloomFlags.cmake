# The compiler flags of every target, in one place.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# The folders also become parts of a module. Hidden, functions stay as fast as in a program.
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

add_library(starbloom_flags INTERFACE)

target_compile_options(starbloom_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion
  # GCC 12 sees overlaps in std::string's own operator+ where there are none (its bug 105329).
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  # A show is the same bit for bit on every machine: a fused multiply-add, which only some processors have, would break that.
  -ffp-contract=off)

# What Debian hardens its programs with. Its linker makes tables read-only by itself; binding all symbols at the start, the
# one thing left out, would lengthen each launch.
if(NOT STARBLOOM_SANITIZER AND NOT STARBLOOM_FUZZ)
  target_compile_options(starbloom_flags INTERFACE
    "$<$<CONFIG:Release>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2;-fstack-protector-strong>")
endif()

if(STARBLOOM_WERROR)
  target_compile_options(starbloom_flags INTERFACE -Werror)
endif()

if(STARBLOOM_SANITIZER)
  target_compile_options(starbloom_flags INTERFACE
    -fsanitize=${STARBLOOM_SANITIZER} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(starbloom_flags INTERFACE -fsanitize=${STARBLOOM_SANITIZER})
endif()

# A fuzzer finds its way by what it sees of the code under it, so with fuzz targets every folder is instrumented.
if(STARBLOOM_FUZZ)
  target_compile_options(starbloom_flags INTERFACE
    -fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(starbloom_flags INTERFACE -fsanitize=fuzzer-no-link,address,undefined)
endif()

# starbloom_precompile(<target> <headers...>): reads these headers once per target and not once per file. Only builds that
# nobody develops in ask for it, as it hides a forgotten include.
function(starbloom_precompile target)
  if(STARBLOOM_PRECOMPILE)
    target_precompile_headers(${target} PRIVATE ${ARGN})
  endif()
endfunction()

# starbloom_library(<folder> <sources...>): one static library per folder, also known as starbloom::<folder>.
# Includes are written from the root of the tree, as in #include "engine/model/EmitterCell.h".
function(starbloom_library name)
  add_library(starbloom_${name} STATIC ${ARGN})
  add_library(starbloom::${name} ALIAS starbloom_${name})
  target_include_directories(starbloom_${name} PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(starbloom_${name} PRIVATE starbloom_flags)
endfunction()
