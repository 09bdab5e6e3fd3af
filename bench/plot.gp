# Start-up time and idle memory of the service against the number of values.
# Called by scripts/bench.sh with
#   gnuplot -e "data='<points file>'; output='<png>'" bench/plot.gp
# where each line of the points file is: values start-up-ms VmRSS-MiB
# VmHWM-MiB floor-start-up-ms floor-VmRSS-MiB.
set terminal pngcairo size 900,560 noenhanced
set output output
set title "dbus-ex-plix: start-up and idle memory by configuration size"
set logscale x 10
set logscale y 10
set logscale y2 10
set xlabel "values in the configuration"
set ylabel "start-up, exec to first reply (ms)"
set y2label "memory (MiB)"
set ytics nomirror
set y2tics
set key top left
set grid
plot data using 1:2 axes x1y1 with linespoints lw 2 title "start-up", \
     data using 1:5 axes x1y1 with lines dt 2 title "start-up of the floor", \
     data using 1:3 axes x1y2 with linespoints lw 2 title "VmRSS idle (after the calls)", \
     data using 1:4 axes x1y2 with linespoints title "VmHWM", \
     data using 1:6 axes x1y2 with lines dt 2 title "VmRSS of the memory floor"
