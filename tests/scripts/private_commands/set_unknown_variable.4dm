// A variable that the interpreter does not have cannot be handed over.
_SET 4D VARIABLE("vnone")  // error: -14 Unknown 4D-Variable "vnone"
