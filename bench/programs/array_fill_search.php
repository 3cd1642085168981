<?php
$values = array_fill(1, 200000, 0);
for ($i = 1; $i <= 200000; $i++) {
    $values[$i] = $i * 2;
}
$sum = 0;
for ($i = 1; $i <= 100; $i++) {
    $found = array_search($i * 4000, $values, true);
    $sum = $sum + ($found === false ? -1 : $found);
}
echo $sum, "\n";
