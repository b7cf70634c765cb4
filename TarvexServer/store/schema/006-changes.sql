-- How often anything of the account was changed: whoever remembers an answer sees by it that it is out of date.
ALTER TABLE account ADD COLUMN changes BIGINT NOT NULL DEFAULT 0;
