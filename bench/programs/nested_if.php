<?php
$a = $b = $c = 0;
for ($i = 1; $i <= 2000000; $i++) {
    if ($i % 2 == 0) {
        if ($i % 3 == 0) {
            $a = $a + 1;
        } else {
            if ($i % 5 == 0) {
                $b = $b + 1;
            } else {
                $c = $c + 1;
            }
        }
    } else {
        $c = $c + 2;
    }
}
echo "$a $b $c\n";
