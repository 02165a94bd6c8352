target_sources(starbloom_persistence PRIVATE
  stores/AppFolder.cpp
  stores/KeyValueStore.cpp
  stores/NumberText.cpp
  stores/SqliteDatabase.cpp
  stores/StoreFile.cpp
  stores/Stores.cpp
  stores/StoreTables.cpp
)
