// Declares its result only.
C_LONGINT($0;$1)
