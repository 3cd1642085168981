<?php
$composite = array_fill(1, 1000000, false);
$count = 0;
for ($i = 2; $i <= 1000000; $i++) {
    if (!$composite[$i]) {
        $count = $count + 1;
        $k = $i * $i;
        while ($k <= 1000000) {
            $composite[$k] = true;
            $k = $k + $i;
        }
    }
}
echo $count, "\n";
