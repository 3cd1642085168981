// Blanks may stand between all tokens.
   $a   :=   1   +   2
   ALERT  (  String  (  $a  )  )   // expect: 3
