// A number is no target.
5:=3  // error: -4 No variable/field to assign
