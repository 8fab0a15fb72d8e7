// Stores in SQLite files.
