# Install rules; completed with the package files.
