// ARRAY STRING and ARRAY TEXT make the same kind.
ARRAY STRING($a;1)
ARRAY TEXT($b;1)
$a{1}:="a long text that no width cuts"
COPY ARRAY($a;$b)
ALERT($b{1})  // expect: a long text that no width cuts
