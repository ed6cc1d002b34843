pytest_plugins = ["sai_virtual.pytest_plugin"]
