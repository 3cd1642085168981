// A text is no target.
"a":=3  // error: -4 No variable/field to assign
