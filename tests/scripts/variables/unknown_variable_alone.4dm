// A line that only names an unknown variable fails.
unknown  // error: -14 Unknown Variable "unknown"
