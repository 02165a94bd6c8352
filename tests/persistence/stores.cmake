set(PERSISTENCE_STORES_TESTS
  stores/AppFolderTest.cpp
  stores/DamagedStoreTest.cpp
  stores/KilledLaunchTest.cpp
  stores/NumberTextTest.cpp
  stores/StoresTest.cpp
)

# What the test of killed launches runs and kills.
add_executable(launch_stores stores/launch_stores.cpp)
target_link_libraries(launch_stores PRIVATE starbloom_flags starbloom::persistence)
