set(PERSISTENCE_FILES_TESTS
  files/BackgroundColorTest.cpp
  files/MenuSnapshotTest.cpp
  files/PresetsTest.cpp
  files/PropertyListTest.cpp
  files/SharedFolderTest.cpp
  files/SharedFolderChoiceTest.cpp
  files/WindowFramesTest.cpp)
