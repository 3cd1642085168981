// A command is no target.
ALERT:=3  // error: -4 No variable/field to assign
