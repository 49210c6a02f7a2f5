#!/bin/sh
# Starts the example on the terminal.
exec ./kt500hello
