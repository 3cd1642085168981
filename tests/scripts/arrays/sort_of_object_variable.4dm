// Required: an object variable handed over as it is cannot be written back.
C_OBJECT(vo)
SORT ARRAY(vo)  // error: -37 The Variable "vo" could not set. Wrong type.
