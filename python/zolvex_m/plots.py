"""(placeholder)"""
