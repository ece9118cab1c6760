@rem Takes back what register.cmd does.
@"%~dp0register.cmd" /u %*
