// Placeholder source so that every library target has at least one file.
