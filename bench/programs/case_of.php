<?php
$hits = $rest = 0;
for ($i = 1; $i <= 1500000; $i++) {
    $k = $i % 8;
    if ($k == 0) {
        $hits = $hits + 1;
    } elseif ($k == 1) {
        $hits = $hits + 2;
    } elseif ($k == 2) {
        $hits = $hits + 3;
    } elseif ($k == 3) {
        $hits = $hits + 4;
    } elseif ($k == 4) {
        $hits = $hits + 5;
    } else {
        $rest = $rest + 1;
    }
}
echo "$hits $rest\n";
