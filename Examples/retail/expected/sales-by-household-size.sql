SELECT household.household_size, sum(sales.amount * customer_household.share_percent) / 100 AS amount
FROM sales
JOIN customer ON sales.customer_key = customer.customer_key
JOIN customer_household ON customer.customer_key = customer_household.customer_key
JOIN household ON customer_household.household_key = household.household_key
GROUP BY household.household_size
ORDER BY household.household_size;
