// An element of another kind is not appended.
ARRAY LONGINT(va;0)
APPEND TO ARRAY(va;"a")  // error: -10 Find in array does not work with this type. Variable "va".
