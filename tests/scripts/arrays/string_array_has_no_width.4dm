// ARRAY STRING takes the array and its length, no width.
va:="x"
ARRAY STRING(80;va;5)  // error: -13 Command "ARRAY STRING" wrong count of parameters
