#!/usr/bin/env bash
# Writes a plain catalogue of 60,000 identical asteroids to standard output.
awk 'BEGIN { print "ID\tEpoch(MJD)\ta(AU)\te\ti(deg)\tOmega(deg)\tomega(deg)\tM(deg)";
             for (k = 1; k <= 60000; k++) printf "%d\t64328\t2.5\t0.1\t5\t10\t20\t30\n", k }'
