// Add to date takes four parameters.
$d:=Add to date(!2024-01-15!;1;2)  // error: -13 Command "Add to date" wrong count of parameters
