// Blanks may stand around brackets and separators.
ALERT ( Substring ( "hello" ; 2 ; 3 ) )  // expect: ell
