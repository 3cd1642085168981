<?php
$composite = array_fill(1, 200000, false);
$count = 0;
for ($i = 2; $i <= 200000; $i++) {
    if (!$composite[$i]) {
        $count = $count + 1;
        $k = $i * $i;
        while ($k <= 200000) {
            $composite[$k] = true;
            $k = $k + $i;
        }
    }
}
echo $count, "\n";
