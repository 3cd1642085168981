<?php
$sum = 0.0;
for ($i = 1; $i <= 2000000; $i++) {
    $sum = $sum + (($i * 3) % 7) - 1;
}
echo (int) $sum, "\n";
