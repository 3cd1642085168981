// Makes its result an array.
ARRAY LONGINT($0;3)
