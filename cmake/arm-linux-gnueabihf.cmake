# Cross-building for a 32-bit ARM panel with Debian's compiler. TOLVANE_ARM_ROOT is the folder that
# holds the panel's libraries; programs that the build runs for itself are run under qemu-arm.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)

set(TOLVANE_ARM_ROOT ${CMAKE_CURRENT_LIST_DIR}/../build-arm/root CACHE PATH "The panel's libraries")
get_filename_component(TOLVANE_ARM_ROOT ${TOLVANE_ARM_ROOT} ABSOLUTE)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TOLVANE_ARM_ROOT)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm -L ${TOLVANE_ARM_ROOT})

# The C and C++ libraries are the compiler's own, so the root is searched, but is no sysroot.
set(CMAKE_FIND_ROOT_PATH ${TOLVANE_ARM_ROOT})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
# What the panel's libraries need in turn.
foreach(folder lib usr/lib)
    string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT
        " -Wl,-rpath-link,${TOLVANE_ARM_ROOT}/${folder}/arm-linux-gnueabihf")
endforeach()
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${CMAKE_EXE_LINKER_FLAGS_INIT})
