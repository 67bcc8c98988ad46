# SPDX-License-Identifier: Apache-2.0
#
# Plots time against size on logarithmic axes. The last column of DATA is the baseline.
# Usage: gnuplot -c bench/picture.gp DATA SVG SIZE_LABEL
set terminal svg noenhanced size 720,480 font "sans-serif,13" background "white"
set output ARG2
set logscale xy
set autoscale xfix
set format x "%.0s%c"
set format y "%.0s %cs"
set xlabel ARG3
set ylabel "time of one call"
unset mxtics
unset mytics
set grid xtics ytics linetype 1 linecolor "#dddddd"
set key left top
set style data lines
stats ARG1 skip 1 nooutput
set style line 1 linewidth 2 linecolor "#0072b2"
set style line 2 linewidth 2 linecolor "#d55e00"
set style line 3 linewidth 2 linecolor "#009e73"
set style line 4 linewidth 2 linecolor "#cc79a7"
set style line 5 linewidth 2 dashtype 2 linecolor "#555555"
curves = STATS_columns - 1
plot for [i = 1:curves] ARG1 using 1:i + 1 title columnheader(i + 1) linestyle (i == curves ? 5 : i)
