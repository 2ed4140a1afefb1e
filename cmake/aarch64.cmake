# Cross-building for AArch64 with Debian's compiler, against Debian's arm64 packages.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CXX_COMPILER aarch64-linux-gnu-g++)

# One library of the log library's dependencies comes from a package whose other architecture can not be installed
# beside ours: scripts/arm64-sysroot.sh unpacks it here.
set(ZVTTV_ARM64_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/arm64-sysroot)
set(CMAKE_EXE_LINKER_FLAGS_INIT -Wl,-rpath-link,${ZVTTV_ARM64_SYSROOT}/usr/lib/p7zip)
set(CMAKE_SHARED_LINKER_FLAGS_INIT -Wl,-rpath-link,${ZVTTV_ARM64_SYSROOT}/usr/lib/p7zip)
