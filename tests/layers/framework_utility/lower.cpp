// Nothing is included here.
