target_sources(starbloom_persistence PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/BackgroundColor.cpp
  ${CMAKE_CURRENT_LIST_DIR}/MenuSnapshot.cpp
  ${CMAKE_CURRENT_LIST_DIR}/Presets.cpp
  ${CMAKE_CURRENT_LIST_DIR}/PropertyList.cpp
  ${CMAKE_CURRENT_LIST_DIR}/PropertyListGuard.cpp
  ${CMAKE_CURRENT_LIST_DIR}/SharedFolder.cpp
  ${CMAKE_CURRENT_LIST_DIR}/SharedFolderChoice.cpp
  ${CMAKE_CURRENT_LIST_DIR}/WindowFrames.cpp
)
