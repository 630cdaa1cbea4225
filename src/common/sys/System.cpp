// Placeholder until the seam lands: keeps the library non-empty.
